#include "screens/settings/SettingRow.h"

#include "screens/theme/Grid.h"
#include "screens/theme/Parts.h"

#include <QHBoxLayout>

namespace fernwick {

SettingRow::SettingRow(const Theme& theme, const QString& label, QWidget* control, QWidget* parent)
    : QWidget(parent) {
    auto* name = makeLabel(label, theme.font(13), this);
    name->setWordWrap(true); // rather than push the control out of the window
    name->setBuddy(control);
    control->setParent(this);
    if (control->accessibleName().isEmpty()) {
        QString aloud = label;
        control->setAccessibleName(aloud.remove(QLatin1Char(':')));
    }
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(grid::kMedium);
    row->addWidget(name, 1);
    row->addWidget(control);
}

} // namespace fernwick
