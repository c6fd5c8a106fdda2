#include "screens/routing/RuleRow.h"

#include "screens/routing/Capsule.h"
#include "screens/routing/RowGround.h"
#include "screens/theme/DisplayText.h"
#include "screens/theme/Grid.h"

#include <QFontMetrics>
#include <QPainter>

namespace fernwick {

namespace {

constexpr int kMarkSize = 10;
constexpr double kOffOpacity = 0.3;
constexpr double kCapsuleOpacity = 0.12;
constexpr int kLineGap = 2;

} // namespace

RuleRow::RuleRow(const AppRule& rule)
    : id(rule.id), name(rule.name), hosts(namedHosts(rule)), action(rule.action), isEnabled(rule.isEnabled) {}

QString RuleRow::title() const {
    return displayLine(name);
}

QString RuleRow::spoken() const {
    return QStringLiteral("%1, %2, %3, %4")
        .arg(title(), hostSummary(hosts), actionText(action),
             isEnabled ? QStringLiteral("on") : QStringLiteral("off"));
}

RuleRowDelegate::RuleRowDelegate(const Theme& theme, const RuleListModel& model, QObject* parent)
    : QStyledItemDelegate(parent),
      theme_(theme),
      model_(model),
      nameFont_(theme.font(13, QFont::Medium)),
      hostsFont_(theme.font(11)),
      capsuleFont_(theme.font(10, QFont::DemiBold)) {}

QSize RuleRowDelegate::sizeHint(const QStyleOptionViewItem& /*option*/, const QModelIndex& /*index*/) const {
    const int text = QFontMetrics(nameFont_).height() + kLineGap + QFontMetrics(hostsFont_).height();
    return {1, 2 * kRowPadding + text}; // the list gives every row its own width
}

void RuleRowDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                            const QModelIndex& index) const {
    painter->save();
    painter->setClipRect(option.rect);
    const Palette& colors = theme_.colors();
    const QRect content = paintRowGround(*painter, option, colors);
    const RuleRow& row = model_.row(index.row());
    paintMark(*painter, QRect(content.left(), content.top(), kMarkSize, content.height()), row);

    const CapsuleLook look{actionText(row.action), actionColor(row.action), kCapsuleOpacity, {}};
    const QSize size = capsuleSize(QFontMetrics(capsuleFont_), look);
    const QRect capsule(
        QPoint(content.right() + 1 - size.width(), content.top() + (content.height() - size.height()) / 2),
        size);
    painter->setFont(capsuleFont_);
    paintCapsule(*painter, capsule, look, theme_);

    const int left = content.left() + kMarkSize + grid::kMedium;
    QRect line(left, content.top(), capsule.left() - grid::kSmall - left, QFontMetrics(nameFont_).height());
    painter->setFont(nameFont_);
    painter->setPen(row.isEnabled ? colors.text : colors.secondary);
    drawLine(*painter, line, row.title());
    line.translate(0, line.height() + kLineGap);
    line.setHeight(QFontMetrics(hostsFont_).height());
    painter->setFont(hostsFont_);
    painter->setPen(colors.secondary);
    drawLine(*painter, line, hostSummary(row.hosts), Qt::LeftToRight);
    painter->restore();
}

void RuleRowDelegate::paintMark(QPainter& painter, const QRect& area, const RuleRow& row) const {
    const Palette& colors = theme_.colors();
    const QRectF mark(area.left(), area.center().y() - kMarkSize / 2.0 + 1, kMarkSize, kMarkSize);
    stylepaint::roundedBox(
        painter, mark, row.isEnabled ? colors.*actionColor(row.action) : withOpacity(colors.gray, kOffOpacity),
        Qt::transparent, kMarkSize / 2.0);
}

} // namespace fernwick
