#include "screens/routing/PlusButton.h"

#include "screens/theme/StylePaint.h"

#include <QPainter>

namespace fernwick {

namespace {

constexpr int kSize = 24;
constexpr int kRing = 3; // room around the circle for the focus ring
constexpr int kIconSize = 14;

} // namespace

PlusButton::PlusButton(const Theme& theme, const QString& helpText, QWidget* parent)
    : QToolButton(parent), theme_(theme) {
    setFixedSize(kSize, kSize);
    setFocusPolicy(Qt::StrongFocus);
    setToolTip(helpText);
    setAccessibleName(helpText);
}

void PlusButton::paintEvent(QPaintEvent* /*event*/) {
    const Palette& colors = theme_.colors();
    QPainter painter(this);
    const QRectF circle = QRectF(rect()).adjusted(kRing, kRing, -kRing, -kRing);
    const double radius = circle.width() / 2;
    stylepaint::roundedBox(painter, circle, colors.accent, Qt::transparent, radius);
    if (isDown() || underMouse()) {
        stylepaint::roundedBox(painter, circle, isDown() ? colors.pressed : colors.hover, Qt::transparent,
                               radius);
    }
    if (hasFocus()) {
        stylepaint::focusRing(painter, QRectF(rect()), colors.accent, kSize / 2.0);
    }
    theme_.icons().paint(painter, Icon::plus, colors.onAccent, QRectF(rect()), kIconSize);
}

} // namespace fernwick
