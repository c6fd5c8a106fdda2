#include "screens/routing/ProxyRow.h"

#include "screens/routing/Capsule.h"
#include "screens/routing/RoutingTexts.h"
#include "screens/routing/RowGround.h"
#include "screens/theme/DisplayText.h"
#include "screens/theme/Grid.h"

#include <QPainter>

#include <algorithm>

namespace fernwick {

namespace {

constexpr int kBadgeWidth = 52;
constexpr double kBadgeRadius = 6.0;
constexpr double kBadgeOpacity = 0.15;
constexpr double kTunnelOpacity = 0.1;
constexpr int kLineGap = 2;
constexpr int kShortestCapsule = 72; // of a tunnel whose name is longer than the room

} // namespace

ProxyRow::ProxyRow(const ProxyConfig& proxy, const TunnelNames& tunnels)
    : id(proxy.id),
      name(proxy.name),
      address(proxy.address),
      port(proxy.port),
      proto(proxy.proto),
      tunnel(tunnelName(tunnels, proxy.tunnelID).value_or(QString())) {}

QString ProxyRow::title() const {
    return displayLine(name);
}

QString ProxyRow::addressText() const {
    return QStringLiteral("%1:%2").arg(displayLine(address), QString::number(port));
}

QString ProxyRow::spoken() const {
    const QString plain = QStringLiteral("%1, %2, %3").arg(title(), addressText(), protocolText(proto));
    return tunnel.isEmpty() ? plain : QStringLiteral("%1, %2").arg(plain, tunnel);
}

ProxyRowDelegate::ProxyRowDelegate(const Theme& theme, const ProxyListModel& model, QObject* parent)
    : QStyledItemDelegate(parent),
      theme_(theme),
      model_(model),
      nameFont_(theme.font(13, QFont::Medium)),
      addressFont_(theme.font(11)),
      badgeFont_(theme.font(8.5, QFont::Medium)),
      capsuleFont_(theme.font(10, QFont::Medium)) {}

int ProxyRowDelegate::textHeight() const {
    const int capsule = capsuleSize(QFontMetrics(capsuleFont_), {}).height();
    return QFontMetrics(nameFont_).height() + kLineGap + std::max(QFontMetrics(addressFont_).height(), capsule);
}

QSize ProxyRowDelegate::sizeHint(const QStyleOptionViewItem& /*option*/, const QModelIndex& /*index*/) const {
    return {1, 2 * kRowPadding + textHeight()}; // the list gives every row its own width
}

void ProxyRowDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                             const QModelIndex& index) const {
    painter->save();
    painter->setClipRect(option.rect);
    const QRect content = paintRowGround(*painter, option, theme_.colors());
    const ProxyRow& row = model_.row(index.row());
    const int badge =
        std::max(kBadgeWidth, QFontMetrics(badgeFont_).horizontalAdvance(QStringLiteral("Version 5 ")));
    paintBadge(*painter, QRect(content.left(), content.top(), badge, content.height()), row.proto);
    const int left = content.left() + badge + grid::kMedium - 2;
    const int nameHeight = QFontMetrics(nameFont_).height();
    const QRect name(left, content.top(), content.right() + 1 - left, nameHeight);
    painter->setFont(nameFont_);
    painter->setPen(theme_.colors().text);
    drawLine(*painter, name, row.title());
    const int below = nameHeight + kLineGap;
    paintAddress(*painter, QRect(left, content.top() + below, name.width(), content.height() - below), row);
    painter->restore();
}

void ProxyRowDelegate::paintBadge(QPainter& painter, const QRect& area, ProxyProtocol proto) const {
    const QColor& color = theme_.colors().*protocolColor(proto);
    stylepaint::roundedBox(painter, QRectF(area), withOpacity(color, kBadgeOpacity), Qt::transparent,
                           kBadgeRadius);
    painter.setFont(badgeFont_);
    painter.setPen(color);
    painter.drawText(area, Qt::AlignCenter | Qt::TextWordWrap, protocolText(proto));
}

void ProxyRowDelegate::paintAddress(QPainter& painter, const QRect& line, const ProxyRow& row) const {
    int room = line.width();
    QRect capsule;
    const CapsuleLook look{row.tunnel, &Palette::orange, kTunnelOpacity, Icon::branch};
    if (!row.tunnel.isEmpty()) {
        const QSize wanted = capsuleSize(QFontMetrics(capsuleFont_), look);
        const int beside = QFontMetrics(addressFont_).horizontalAdvance(row.addressText()) + grid::kSmall;
        const int left = line.width() - beside;
        const int width = std::min(wanted.width(), std::max(left, kShortestCapsule));
        room = line.width() - width - grid::kSmall;
        capsule =
            QRect(QPoint(0, line.top() + (line.height() - wanted.height()) / 2), QSize(width, wanted.height()));
    }
    painter.setFont(addressFont_);
    painter.setPen(theme_.colors().secondary);
    const int used = drawLine(painter, QRect(line.left(), line.top(), room, line.height()), row.addressText(),
                              Qt::LeftToRight);
    if (!capsule.isNull()) {
        capsule.moveLeft(line.left() + used + grid::kSmall);
        painter.setFont(capsuleFont_);
        paintCapsule(painter, capsule, look, theme_);
    }
}

} // namespace fernwick
