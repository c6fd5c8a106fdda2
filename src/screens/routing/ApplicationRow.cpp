#include "screens/routing/ApplicationRow.h"

#include "screens/routing/ApplicationListModel.h"
#include "screens/theme/DisplayText.h"
#include "screens/theme/Grid.h"
#include "screens/theme/StylePaint.h"

#include <QPainter>

#include <algorithm>

namespace fernwick {

namespace {

constexpr int kIconSize = 28;
constexpr int kOuterMargin = 6; // between the list's edge and the ground of a chosen row
constexpr int kPadding = 6;
constexpr int kLineGap = 1;
constexpr double kRowRadius = 7.0;

} // namespace

ApplicationRow::ApplicationRow(const Theme& theme, QObject* parent)
    : QStyledItemDelegate(parent),
      theme_(theme),
      nameFont_(theme.font(13, QFont::Medium)),
      valueFont_(theme.font(11)) {}

QSize ApplicationRow::sizeHint(const QStyleOptionViewItem& /*option*/, const QModelIndex& /*index*/) const {
    const int lines = QFontMetrics(nameFont_).height() + kLineGap + QFontMetrics(valueFont_).height();
    return {1, std::max(lines, kIconSize) + 2 * kPadding};
}

void ApplicationRow::paint(QPainter* painter, const QStyleOptionViewItem& option,
                           const QModelIndex& index) const {
    const Palette& colors = theme_.colors();
    const QRect ground = option.rect.adjusted(kOuterMargin, 1, -kOuterMargin, -1);
    painter->save();
    painter->setClipRect(option.rect);
    if (option.state.testFlag(QStyle::State_Selected)) {
        stylepaint::roundedBox(*painter, QRectF(ground), colors.selection, Qt::transparent, kRowRadius);
    } else if (option.state.testFlag(QStyle::State_MouseOver)) {
        stylepaint::roundedBox(*painter, QRectF(ground), colors.hover, Qt::transparent, kRowRadius);
    }
    if (option.state.testFlag(QStyle::State_HasFocus) &&
        option.state.testFlag(QStyle::State_KeyboardFocusChange)) {
        stylepaint::focusRing(*painter, QRectF(ground), colors.accent, kRowRadius);
    }
    const QRect content = ground.adjusted(kPadding + 2, 0, -kPadding - 2, 0);
    const auto place = [&](const QRect& where) {
        return QStyle::visualRect(option.direction, option.rect, where);
    };
    const QRect icon(content.left(), content.center().y() - kIconSize / 2 + 1, kIconSize, kIconSize);
    index.data(Qt::DecorationRole).value<QIcon>().paint(painter, place(icon));
    const QFontMetrics nameMetrics(nameFont_);
    const QFontMetrics valueMetrics(valueFont_);
    const int left = icon.right() + 1 + grid::kSmall + 2;
    const int top = content.center().y() + 1 - (nameMetrics.height() + kLineGap + valueMetrics.height()) / 2;
    const QRect name(left, top, content.right() - left, nameMetrics.height());
    painter->setFont(nameFont_);
    painter->setPen(colors.text);
    drawLine(*painter, place(name), index.data(Qt::DisplayRole).toString(), option.direction);
    painter->setFont(valueFont_);
    painter->setPen(colors.secondary);
    drawLine(*painter, place(QRect(left, name.bottom() + 1 + kLineGap, name.width(), valueMetrics.height())),
             index.data(ApplicationListModel::kValueRole).toString(), option.direction);
    painter->restore();
}

} // namespace fernwick
