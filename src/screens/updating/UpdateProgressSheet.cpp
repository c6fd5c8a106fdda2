#include "screens/updating/UpdateProgressSheet.h"

#include "screens/theme/DisplayText.h"
#include "screens/updating/BusyBar.h"

#include <QPushButton>

namespace fernwick {

UpdateProgressSheet::UpdateProgressSheet(const Theme& theme, const UpdateProgress& progress, QWidget* parent)
    : AlertSheet(theme, QStringLiteral("updateProgress"), {Icon::application, &Palette::accent},
                 displayText(progress.message), parent) {
    setMessage(displayText(progress.informativeText));
    auto* bar = new BusyBar(theme, this);
    bar->setObjectName(QStringLiteral("updateProgressBar"));
    bar->setAccessibleName(windowTitle());
    bar->setFixedSize(kBarSize);
    addAccessory(bar);
    auto* button = addButton(displayText(progress.button), ButtonRole::plain,
                             QStringLiteral("updateProgressButton"), QDialog::Rejected);
    button->setEnabled(false);
}

} // namespace fernwick
