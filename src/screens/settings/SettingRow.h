// One row of a card of settings: what it is about at the near side, the control at the far one.
// Threads: main thread only.
#pragma once

#include "screens/theme/Theme.h"

#include <QWidget>

namespace fernwick {

class SettingRow final : public QWidget {
public:
    // Takes the control over. It goes by the label on the screen and, unless it has a name already, aloud; a
    // colon is not read.
    SettingRow(const Theme& theme, const QString& label, QWidget* control, QWidget* parent);
};

} // namespace fernwick
