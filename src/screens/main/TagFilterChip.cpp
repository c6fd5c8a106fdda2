#include "screens/main/TagFilterChip.h"

#include "screens/theme/Grid.h"
#include "screens/theme/StylePaint.h"

#include <QPainter>

#include <algorithm>

namespace fernwick {

namespace {

constexpr int kPadding = 10;
constexpr int kLongest = 160;
constexpr double kGroundOpacity = 0.15;
constexpr double kHoverOpacity = 0.25;
constexpr double kBrightGround = 0.6; // beyond this luminance white text is no longer legible

// White or black, whichever can be read on the colour.
QColor inkOn(const QColor& color) {
    const double luminance = 0.2126 * color.redF() + 0.7152 * color.greenF() + 0.0722 * color.blueF();
    return luminance > kBrightGround ? QColor(0, 0, 0, 210) : QColor(Qt::white);
}

} // namespace

TagFilterChip::TagFilterChip(const Theme& theme, const QString& label, bool isSelected, const QColor& color,
                             std::function<void()> action, QWidget* parent)
    : QAbstractButton(parent), theme_(theme), color_(color) {
    setText(label);
    setAccessibleName(label);
    setFont(theme.font(11, QFont::Medium));
    setCheckable(true);
    setChecked(isSelected);
    setFocusPolicy(Qt::TabFocus);
    setAttribute(Qt::WA_Hover);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    connect(this, &QAbstractButton::clicked, this, action);
    // Assistive technology toggles without a click; to us it is one, and what is chosen is not the chip's to
    // say.
    connect(this, &QAbstractButton::toggled, this, [this, isSelected, action = std::move(action)] {
        blockSignals(true);
        setChecked(isSelected);
        blockSignals(false);
        action();
    });
}

QSize TagFilterChip::sizeHint() const {
    const int width = std::min(fontMetrics().horizontalAdvance(text()), kLongest);
    return {width + 2 * kPadding, fontMetrics().height() + grid::kSmall};
}

void TagFilterChip::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    const QRectF area(rect());
    const double radius = area.height() / 2;
    const double opacity = isChecked() ? 1.0 : (underMouse() ? kHoverOpacity : kGroundOpacity);
    stylepaint::roundedBox(painter, area, withOpacity(color_, opacity), Qt::transparent, radius);
    if (hasFocus()) {
        stylepaint::focusRing(painter, area, isChecked() ? theme_.colors().text : theme_.colors().accent,
                              radius);
    }
    painter.setPen(isChecked() ? inkOn(color_) : theme_.colors().text);
    const QRect room = rect().adjusted(kPadding, 0, -kPadding, 0);
    painter.drawText(room, Qt::AlignCenter | Qt::TextSingleLine,
                     fontMetrics().elidedText(text(), Qt::ElideRight, room.width() + 1));
}

} // namespace fernwick
