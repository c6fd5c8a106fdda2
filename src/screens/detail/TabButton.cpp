#include "screens/detail/TabButton.h"

#include "screens/theme/Grid.h"
#include "screens/theme/StylePaint.h"

#include <QPainter>

#include <algorithm>

namespace fernwick {

namespace {

constexpr int kHeight = 32;
constexpr int kIconSize = 16;
constexpr int kPadding = 12;
constexpr int kGap = 6;
constexpr int kBadgePadding = 5;
constexpr double kChosenOpacity = 0.14;

} // namespace

TabButton::TabButton(const Theme& theme, const QString& title, Icon icon, int index,
                     std::function<void(int)> selected, QWidget* parent)
    : QAbstractButton(parent), theme_(theme), icon_(icon) {
    setText(title);
    setFont(theme.font(13, QFont::Medium));
    setCheckable(true);
    setAutoExclusive(true);
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_Hover);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    connect(this, &QAbstractButton::toggled, this, [index, selected = std::move(selected)](bool on) {
        if (on) {
            selected(index);
        }
    });
}

void TabButton::setBadge(int badge) {
    if (badge == badge_) {
        return;
    }
    badge_ = badge;
    setAccessibleDescription(badge > 0 ? QString::number(badge) : QString());
    updateGeometry();
    update();
}

QSize TabButton::badgeSize() const {
    if (badge_ <= 0) {
        return {0, 0};
    }
    const QFontMetrics metrics(theme_.font(11, QFont::Bold));
    const int height = metrics.height() + 2;
    return {std::max(metrics.horizontalAdvance(QString::number(badge_)) + 2 * kBadgePadding, height), height};
}

QSize TabButton::sizeHint() const {
    const int badge = badgeSize().width();
    const int width =
        kIconSize + kGap + fontMetrics().horizontalAdvance(text()) + (badge > 0 ? kGap + badge : 0);
    return {width + 2 * kPadding, std::max(fontMetrics().height() + grid::kSmall, kHeight)};
}

void TabButton::paintEvent(QPaintEvent* /*event*/) {
    const Palette& colors = theme_.colors();
    QPainter painter(this);
    const QRectF area(rect());
    const QColor shade = isDown() ? colors.pressed : (underMouse() ? colors.hover : QColor(Qt::transparent));
    stylepaint::roundedBox(painter, area, isChecked() ? withOpacity(colors.accent, kChosenOpacity) : shade,
                           Qt::transparent, grid::kControlRadius);
    if (hasFocus()) {
        stylepaint::focusRing(painter, area, colors.accent, grid::kControlRadius);
    }
    const auto place = [this](const QRect& where) {
        return QStyle::visualRect(layoutDirection(), rect(), where);
    };
    const QColor ink = isChecked() ? colors.accent : colors.secondary;
    const QRect icon(kPadding, (height() - kIconSize) / 2, kIconSize, kIconSize);
    theme_.icons().paint(painter, icon_, ink, place(icon), kIconSize);
    const int width = fontMetrics().horizontalAdvance(text());
    const QRect title(icon.right() + 1 + kGap, 0, width + 1, height());
    painter.setPen(isChecked() ? colors.accent : colors.text);
    painter.drawText(place(title), Qt::AlignCenter | Qt::TextSingleLine, text());
    if (badge_ > 0) {
        const QSize size = badgeSize();
        const QRect badge = place(QRect(QPoint(title.right() + kGap, (height() - size.height()) / 2), size));
        stylepaint::roundedBox(painter, QRectF(badge), colors.red, Qt::transparent, size.height() / 2.0);
        painter.setPen(colors.onAccent);
        painter.setFont(theme_.font(11, QFont::Bold));
        painter.drawText(badge, Qt::AlignCenter, QString::number(badge_));
    }
}

} // namespace fernwick
