// A button that shows a colour and opens the panel in which another one is chosen.
// Threads: main thread only.
#pragma once

#include "screens/theme/Theme.h"

#include <QAbstractButton>
#include <QPointer>

class QColorDialog;

namespace fernwick {

class ColorWell final : public QAbstractButton {
public:
    // Goes by that name aloud; the colour itself is told as its description.
    ColorWell(const Theme& theme, const QString& name, const QColor& color, QWidget* parent);

    [[nodiscard]] const QColor& color() const { return color_; }
    void setColor(const QColor& color);

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void choose();

    const Theme& theme_;
    QColor color_;
    QPointer<QColorDialog> panel_; // while it is open
};

} // namespace fernwick
