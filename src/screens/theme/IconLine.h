// One line of text behind an icon, each in a colour of its own. To assistive technology it is the text.
// Threads: main thread only.
#pragma once

#include "screens/theme/Parts.h"

namespace fernwick {

class IconLine final : public QLabel {
public:
    // What the line shows.
    struct Look {
        Icon icon;
        NamedColor iconColor;
        NamedColor textColor;
    };

    IconLine(const Theme& theme, const QFont& font, QWidget* parent);

    void showLine(const Look& look, const QString& text);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    const Theme& theme_;
    Look look_{Icon::infoCircle, &Palette::secondary, &Palette::text};
};

} // namespace fernwick
