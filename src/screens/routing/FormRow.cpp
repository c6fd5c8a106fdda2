#include "screens/routing/FormRow.h"

#include "screens/theme/Grid.h"
#include "screens/theme/Parts.h"

#include <QHBoxLayout>

#include <algorithm>

namespace fernwick {

FormRow::FormRow(const Theme& theme, const Label& label, QWidget* control, QWidget* parent) : QWidget(parent) {
    auto* name = makeCaption(label.text, theme.font(13), this);
    name->setFixedWidth(std::max(label.width, name->sizeHint().width()));
    name->setBuddy(control); // assistive technology looks for it beside the control
    QString aloud = label.text;
    control->setAccessibleName(aloud.remove(QLatin1Char(':')));
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(grid::kSmall);
    row->addWidget(name);
    row->addWidget(control, 1);
}

} // namespace fernwick
