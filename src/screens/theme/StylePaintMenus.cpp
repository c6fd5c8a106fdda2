#include "screens/theme/Grid.h"
#include "screens/theme/StylePaint.h"
#include "screens/theme/Theme.h"

#include <QPainter>
#include <QStyleOption>

namespace fernwick::stylepaint {

namespace {

constexpr double kItemRadius = 5.0;
constexpr int kMarkWidth = 20;
constexpr int kMarkSize = 14;
constexpr int kIconSize = 16;
constexpr double kDisabledOpacity = 0.4;
constexpr double kHandleOpacity = 0.28;
constexpr double kHandleHoverOpacity = 0.5;

bool has(const QStyleOption& option, QStyle::StateFlag flag) {
    return option.state.testFlag(flag);
}

void separator(QPainter& painter, const QStyleOptionMenuItem& option, const Palette& colors) {
    const int middle = option.rect.center().y();
    painter.fillRect(
        QRect(option.rect.left() + grid::kSmall, middle, option.rect.width() - 2 * grid::kSmall, 1),
        colors.separator);
}

// A column for the check mark, then one for the icon; each is there only if the menu has such items.
int itemMarks(QPainter& painter, const QStyleOptionMenuItem& option, const QColor& color, const Theme& theme) {
    int lead = grid::kTight;
    const auto column = [&] {
        const QRect area(option.rect.left() + lead, option.rect.top(), kMarkWidth, option.rect.height());
        lead += kMarkWidth;
        return QStyle::visualRect(option.direction, option.rect, area);
    };
    if (option.menuHasCheckableItems || option.checkType != QStyleOptionMenuItem::NotCheckable) {
        const QRect area = column();
        if (option.checked) {
            theme.icons().paint(painter, Icon::check, color, area, kMarkSize);
        }
    }
    if (option.maxIconWidth > 0) {
        const QRect area = column();
        if (!option.icon.isNull()) {
            const QRect icon(area.center().x() - kIconSize / 2 + 1, area.center().y() - kIconSize / 2 + 1,
                             kIconSize, kIconSize);
            const bool enabled = has(option, QStyle::State_Enabled);
            const QIcon::Mode chosen = has(option, QStyle::State_Selected) ? QIcon::Selected : QIcon::Normal;
            option.icon.paint(&painter, icon, Qt::AlignCenter, enabled ? chosen : QIcon::Disabled);
        }
    }
    return lead == grid::kTight ? grid::kSmall + 2 : lead + 2;
}

} // namespace

void menuPanel(QPainter& painter, const QStyleOption& option, const Palette& colors) {
    painter.fillRect(option.rect, colors.popup);
    roundedBox(painter, QRectF(option.rect), colors.popup, colors.border, grid::kControlRadius);
}

void menuItem(QPainter& painter, const QStyleOptionMenuItem& option, const Theme& theme) {
    const Palette& colors = theme.colors();
    if (option.menuItemType == QStyleOptionMenuItem::Separator) {
        separator(painter, option, colors);
        return;
    }
    painter.save();
    const bool enabled = has(option, QStyle::State_Enabled);
    const bool chosen = enabled && has(option, QStyle::State_Selected);
    if (chosen) {
        roundedBox(painter, QRectF(option.rect), colors.accent, Qt::transparent, kItemRadius);
    }
    const QColor color = chosen ? colors.onAccent : withOpacity(colors.text, enabled ? 1.0 : kDisabledOpacity);
    const int lead = itemMarks(painter, option, color, theme);
    const bool mirrored = option.direction == Qt::RightToLeft;
    const QRect area =
        option.rect.adjusted(mirrored ? grid::kMedium : lead, 0, mirrored ? -lead : -grid::kMedium, 0);
    const auto tab = option.text.indexOf(QLatin1Char('\t'));
    painter.setFont(option.font);
    painter.setPen(color);
    const int leading = mirrored ? Qt::AlignRight : Qt::AlignLeft;
    const int trailing = mirrored ? Qt::AlignLeft : Qt::AlignRight;
    painter.drawText(area, Qt::AlignVCenter | Qt::TextHideMnemonic | leading,
                     tab < 0 ? option.text : option.text.left(tab));
    if (tab >= 0) {
        painter.setPen(chosen ? colors.onAccent : colors.secondary);
        painter.drawText(area, Qt::AlignVCenter | trailing, option.text.mid(tab + 1));
    }
    painter.restore();
}

void menuBarItem(QPainter& painter, const QStyleOptionMenuItem& option, const Palette& colors) {
    painter.save();
    painter.fillRect(option.rect, colors.window);
    if (has(option, QStyle::State_Selected)) {
        roundedBox(painter, QRectF(option.rect).adjusted(1, 2, -1, -2),
                   has(option, QStyle::State_Sunken) ? colors.pressed : colors.hover, Qt::transparent,
                   kItemRadius);
    }
    painter.setPen(withOpacity(colors.text, has(option, QStyle::State_Enabled) ? 1.0 : kDisabledOpacity));
    painter.drawText(option.rect, Qt::AlignCenter | Qt::TextHideMnemonic, option.text);
    painter.restore();
}

void scrollBar(QPainter& painter, const QStyleOptionSlider& option, const QRectF& handle,
               const Palette& colors) {
    if (option.minimum >= option.maximum) {
        return;
    }
    const bool active = has(option, QStyle::State_MouseOver) || has(option, QStyle::State_Sunken);
    const double inset = active ? 2.0 : 3.0;
    const bool upright = option.orientation == Qt::Vertical;
    const QRectF shape = upright ? handle.adjusted(inset, 2, -2, -2) : handle.adjusted(2, inset, -2, -2);
    const double radius = (upright ? shape.width() : shape.height()) / 2;
    roundedBox(painter, shape, withOpacity(colors.text, active ? kHandleHoverOpacity : kHandleOpacity),
               Qt::transparent, radius);
}

} // namespace fernwick::stylepaint
