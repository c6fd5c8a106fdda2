#include "screens/theme/Switch.h"

#include "screens/theme/StylePaint.h"

#include <QPainter>
#include <QStyleOptionButton>

namespace fernwick {

namespace {

constexpr int kWidth = 38;
constexpr int kHeight = 22;
constexpr int kRing = 3; // room around the track for the focus ring
constexpr double kKnobInset = 2.0;
constexpr double kOffOpacity = 0.45;
constexpr double kDisabledOpacity = 0.45;

} // namespace

Switch::Switch(const Theme& theme, QWidget* parent) : QCheckBox(parent), theme_(theme) {
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

QSize Switch::sizeHint() const {
    return {kWidth + 2 * kRing, kHeight + 2 * kRing};
}

void Switch::paintEvent(QPaintEvent* /*event*/) {
    QStyleOptionButton option;
    initStyleOption(&option);
    const Palette& colors = theme_.colors();
    QPainter painter(this);
    painter.setOpacity(isEnabled() ? 1.0 : kDisabledOpacity);
    const QRectF track = QRectF(rect()).adjusted(kRing, kRing, -kRing, -kRing);
    const double radius = track.height() / 2;
    stylepaint::roundedBox(painter, track, isChecked() ? colors.accent : withOpacity(colors.gray, kOffOpacity),
                           Qt::transparent, radius);
    if (isEnabled() && (isDown() || underMouse())) {
        stylepaint::roundedBox(painter, track, isDown() ? colors.pressed : colors.hover, Qt::transparent,
                               radius);
    }
    const bool right = isChecked() != (layoutDirection() == Qt::RightToLeft);
    const double side = track.height() - 2 * kKnobInset;
    const double left = right ? track.right() - kKnobInset - side : track.left() + kKnobInset;
    stylepaint::roundedBox(painter, QRectF(left, track.top() + kKnobInset, side, side), colors.onAccent,
                           Qt::transparent, side / 2);
    if (hasFocus() && option.state.testFlag(QStyle::State_KeyboardFocusChange)) {
        stylepaint::focusRing(painter, QRectF(rect()), colors.accent, radius + kRing);
    }
}

} // namespace fernwick
