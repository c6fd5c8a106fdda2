// A small capsule with an icon and a short text, as a port.
// Threads: main thread only.
#pragma once

#include "screens/theme/Parts.h"

namespace fernwick {

class InfoPill final : public QWidget {
public:
    InfoPill(const Theme& theme, Icon icon, QWidget* parent);

    // Shows the text; empty text hides the pill.
    void setText(const QString& text);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    const Theme& theme_;
    QLabel* text_;
};

} // namespace fernwick
