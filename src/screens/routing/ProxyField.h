// One row of the proxy editor: a label in a narrow column, and the control that it names on the screen and
// aloud. Threads: main thread only.
#pragma once

#include "screens/theme/Theme.h"

#include <QWidget>

namespace fernwick {

class ProxyField final : public QWidget {
public:
    static constexpr int kLabelWidth = 70;

    // Takes the content over; it fills the row unless its width is fixed.
    ProxyField(const Theme& theme, const QString& label, QWidget* content, QWidget* parent);
};

} // namespace fernwick
