#include "screens/settings/DisclosureButton.h"

#include "screens/theme/Grid.h"
#include "screens/theme/StylePaint.h"

#include <QPainter>

#include <algorithm>

namespace fernwick {

namespace {

constexpr int kHeight = 28;
constexpr int kIconSize = 14;
constexpr int kGap = 10;
constexpr double kQuarterTurn = 90.0;

} // namespace

DisclosureButton::DisclosureButton(const Theme& theme, QWidget* parent)
    : QAbstractButton(parent), theme_(theme) {
    setFont(theme.font(13));
    setCheckable(true);
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_Hover);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

QSize DisclosureButton::sizeHint() const {
    return {kIconSize + kGap + fontMetrics().horizontalAdvance(text()) + 1,
            std::max(fontMetrics().height() + grid::kTight, kHeight)};
}

void DisclosureButton::paintEvent(QPaintEvent* /*event*/) {
    const Palette& colors = theme_.colors();
    QPainter painter(this);
    const QColor shade = isDown() ? colors.pressed : (underMouse() ? colors.hover : QColor(Qt::transparent));
    stylepaint::roundedBox(painter, QRectF(rect()), shade, Qt::transparent, grid::kControlRadius);
    if (hasFocus()) {
        stylepaint::focusRing(painter, QRectF(rect()), colors.accent, grid::kControlRadius);
    }
    const bool mirrored = layoutDirection() == Qt::RightToLeft;
    const auto place = [this](const QRect& where) {
        return QStyle::visualRect(layoutDirection(), rect(), where);
    };
    painter.save();
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.translate(QRectF(place(QRect(0, 0, kIconSize, height()))).center());
    if (!isChecked()) {
        painter.rotate(mirrored ? kQuarterTurn : -kQuarterTurn);
    }
    theme_.icons().paint(painter, Icon::chevronDown, colors.secondary,
                         QRectF(-kIconSize / 2.0, -kIconSize / 2.0, kIconSize, kIconSize), kIconSize);
    painter.restore();
    const int left = kIconSize + kGap;
    painter.setFont(font());
    painter.setPen(colors.text);
    painter.drawText(place(QRect(left, 0, width() - left, height())),
                     int(QStyle::visualAlignment(layoutDirection(), Qt::AlignLeft) | Qt::AlignAbsolute) |
                         Qt::AlignVCenter | Qt::TextSingleLine,
                     text());
}

} // namespace fernwick
