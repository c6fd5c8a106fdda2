#include "screens/settings/KeyRowDelegate.h"

#include "screens/theme/DisplayText.h"
#include "screens/theme/Grid.h"
#include "screens/theme/StylePaint.h"

#include <QFontMetrics>
#include <QPainter>
#include <QTableView>

#include <algorithm>

namespace fernwick {

namespace {

constexpr int kShortest = 42;
constexpr int kIconSize = 16;
constexpr int kLockSize = 11;
constexpr int kOuterMargin = 3; // between the table's edge and the ground of the chosen row
constexpr int kInset = 12;
constexpr int kLineGap = 1;
constexpr double kRadius = 6.0;

} // namespace

KeyRowDelegate::KeyRowDelegate(const Theme& theme, const KeyTableModel& model, QTableView& table)
    : QStyledItemDelegate(&table),
      theme_(theme),
      model_(model),
      table_(table),
      nameFont_(theme.font(13)),
      smallFont_(theme.font(10.5)) {}

int KeyRowDelegate::rowHeight() const {
    const int lines = QFontMetrics(nameFont_).height() + kLineGap + QFontMetrics(smallFont_).height();
    return std::max(lines + grid::kSmall, kShortest);
}

void KeyRowDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                           const QModelIndex& index) const {
    painter->save();
    painter->setClipRect(option.rect);
    paintGround(*painter, option, index);
    const QRect area = option.rect.adjusted(kInset, 0, -grid::kSmall, 0);
    if (index.column() == KeyTableModel::name) {
        paintName(*painter, area, index);
    } else {
        painter->setFont(theme_.font(12));
        painter->setPen(theme_.colors().secondary);
        drawLine(*painter, area, index.data().toString(), Qt::LeftToRight, Qt::ElideMiddle);
    }
    painter->restore();
}

// One ground for the whole row, of which each cell shows its part.
void KeyRowDelegate::paintGround(QPainter& painter, const QStyleOptionViewItem& option,
                                 const QModelIndex& index) const {
    const Palette& colors = theme_.colors();
    QRectF ground(kOuterMargin, option.rect.top() + 1, table_.viewport()->width() - 2 * kOuterMargin,
                  option.rect.height() - 2);
    if (option.state.testFlag(QStyle::State_Selected)) {
        stylepaint::roundedBox(painter, ground, colors.selection, Qt::transparent, kRadius);
    }
    const bool isCurrent = table_.currentIndex().row() == index.row();
    if (table_.hasFocus() && isCurrent && !option.state.testFlag(QStyle::State_Selected)) {
        stylepaint::focusRing(painter, ground, colors.accent, kRadius); // where the keyboard is
    }
}

void KeyRowDelegate::paintName(QPainter& painter, QRect area, const QModelIndex& index) const {
    const Palette& colors = theme_.colors();
    const bool mirrored = table_.layoutDirection() == Qt::RightToLeft;
    const QRect icon(mirrored ? area.right() + 1 - kIconSize : area.left(), area.top(), kIconSize,
                     area.height());
    theme_.icons().paint(painter, Icon::key, colors.accent, QRectF(icon), kIconSize);
    constexpr int kBeside = kIconSize + grid::kSmall;
    area.adjust(mirrored ? 0 : kBeside, 0, mirrored ? -kBeside : 0, 0);
    const bool encrypted = model_.isEncrypted(index.row());
    QRect line = area;
    if (encrypted) {
        const int name = QFontMetrics(nameFont_).height();
        const int mark = QFontMetrics(smallFont_).height();
        line.setTop(area.top() + (area.height() - name - kLineGap - mark) / 2);
        line.setHeight(name);
        paintMark(painter, QRect(area.left(), line.bottom() + 1 + kLineGap, area.width(), mark));
    }
    painter.setFont(nameFont_);
    painter.setPen(colors.text);
    const QString name = index.data().toString();
    if (mirrored) { // beside the icon, which is at the right
        const int free = line.width() - QFontMetrics(nameFont_).horizontalAdvance(name) - 1;
        line.setLeft(line.left() + std::max(free, 0));
    }
    drawLine(painter, line, name);
}

void KeyRowDelegate::paintMark(QPainter& painter, const QRect& area) const {
    const Palette& colors = theme_.colors();
    const auto place = [&](const QRect& where) {
        return QStyle::visualRect(table_.layoutDirection(), area, where);
    };
    theme_.icons().paint(painter, Icon::lock, colors.orange,
                         QRectF(place(QRect(area.left(), area.top(), kLockSize, area.height()))), kLockSize);
    const int left = area.left() + kLockSize + grid::kTight - 1;
    painter.setFont(smallFont_);
    painter.setPen(colors.orange);
    const QString word = QStringLiteral("encrypted");
    const int width = std::min(QFontMetrics(smallFont_).horizontalAdvance(word) + 1, area.right() + 1 - left);
    drawLine(painter, place(QRect(left, area.top(), width, area.height())), word);
}

} // namespace fernwick
