#include "screens/menubar/PopoverActionButton.h"

#include "screens/theme/Grid.h"
#include "screens/theme/StylePaint.h"

#include <QPainter>

namespace fernwick {

namespace {

constexpr int kVerticalPadding = 5;
constexpr int kHorizontalPadding = 8;
constexpr int kDotSize = 7;
constexpr int kDotGap = 6;
constexpr double kGroundOpacity = 0.14;
constexpr double kBorderOpacity = 0.38;

} // namespace

PopoverActionButton::PopoverActionButton(const Theme& theme, const QString& text, NamedColor tint, bool hasDot,
                                         QWidget* parent)
    : QAbstractButton(parent), theme_(theme), tint_(tint), hasDot_(hasDot) {
    setText(text);
    setFont(theme.font(12, QFont::Medium));
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_Hover);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

int PopoverActionButton::contentWidth() const {
    return fontMetrics().horizontalAdvance(text()) + (hasDot_ ? kDotSize + kDotGap : 0);
}

QSize PopoverActionButton::sizeHint() const {
    return {contentWidth() + 2 * kHorizontalPadding, fontMetrics().height() + 2 * kVerticalPadding};
}

void PopoverActionButton::paintEvent(QPaintEvent* /*event*/) {
    const Palette& colors = theme_.colors();
    const QColor tint = colors.*tint_;
    QPainter painter(this);
    const QRectF area(rect());
    const double radius = grid::kControlRadius - 1;
    stylepaint::roundedBox(painter, area, withOpacity(tint, kGroundOpacity), withOpacity(tint, kBorderOpacity),
                           radius);
    if (isDown() || underMouse()) {
        stylepaint::roundedBox(painter, area, isDown() ? colors.pressed : colors.hover, Qt::transparent,
                               radius);
    }
    if (hasFocus() && window()->testAttribute(Qt::WA_KeyboardFocusChange)) {
        stylepaint::focusRing(painter, area, colors.accent, radius);
    }
    int left = (width() - contentWidth()) / 2;
    const auto leading = QStyle::visualAlignment(layoutDirection(), Qt::AlignLeft) | Qt::AlignAbsolute;
    const auto place = [this](const QRect& where) {
        return QStyle::visualRect(layoutDirection(), rect(), where);
    };
    if (hasDot_) {
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(tint);
        painter.drawEllipse(place(QRect(left, (height() - kDotSize) / 2, kDotSize, kDotSize)));
        left += kDotSize + kDotGap;
    }
    painter.setPen(colors.text);
    painter.drawText(place(QRect(left, 0, width() - left - 1, height())),
                     Qt::AlignVCenter | Qt::TextSingleLine | static_cast<int>(leading.toInt()), text());
}

} // namespace fernwick
