#include "screens/menubar/MenuBarFooterButton.h"

#include "screens/theme/Grid.h"
#include "screens/theme/StylePaint.h"

#include <QPainter>

namespace fernwick {

namespace {

constexpr int kHorizontalPadding = 14;
constexpr int kVerticalPadding = 5;
constexpr int kIconFrame = 16;
constexpr int kIconSize = 14; // what an image in text of size 12 comes to
constexpr int kGap = 8;
constexpr double kHoverOpacity = 0.08;
constexpr double kPressedOpacity = 0.14;

} // namespace

MenuBarFooterButton::MenuBarFooterButton(const Theme& theme, Icon icon, const QString& label,
                                         bool isDestructive, QWidget* parent)
    : QAbstractButton(parent), theme_(theme), icon_(icon), isDestructive_(isDestructive) {
    setText(label);
    // An ampersand would otherwise be taken for the mark of a shortcut, aloud too.
    setAccessibleName(label);
    setFont(theme.font(12));
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_Hover);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

QSize MenuBarFooterButton::sizeHint() const {
    return {2 * kHorizontalPadding + kIconFrame + kGap + fontMetrics().horizontalAdvance(text()),
            fontMetrics().height() + 2 * kVerticalPadding};
}

void MenuBarFooterButton::paintEvent(QPaintEvent* /*event*/) {
    const Palette& colors = theme_.colors();
    const QColor ink = isDestructive_ ? colors.red : colors.text;
    QPainter painter(this);
    if (isDown() || underMouse()) {
        painter.fillRect(rect(), withOpacity(colors.text, isDown() ? kPressedOpacity : kHoverOpacity));
    }
    if (hasFocus() && window()->testAttribute(Qt::WA_KeyboardFocusChange)) {
        stylepaint::focusRing(painter, QRectF(rect()).adjusted(grid::kTight, 0, -grid::kTight, 0),
                              colors.accent, grid::kControlRadius - 1);
    }
    const auto leading = QStyle::visualAlignment(layoutDirection(), Qt::AlignLeft) | Qt::AlignAbsolute;
    const auto place = [this](const QRect& where) {
        return QStyle::visualRect(layoutDirection(), rect(), where);
    };
    const QRect icon(kHorizontalPadding, 0, kIconFrame, height());
    theme_.icons().paint(painter, icon_, ink, place(icon), kIconSize);
    const int left = icon.right() + 1 + kGap;
    painter.setPen(ink);
    painter.drawText(place(QRect(left, 0, width() - left - kHorizontalPadding, height())),
                     Qt::AlignVCenter | Qt::TextSingleLine | static_cast<int>(leading.toInt()), text());
}

} // namespace fernwick
