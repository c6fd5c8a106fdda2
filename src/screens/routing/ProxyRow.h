// One row of the list of proxies: protocol, name, address, and the tunnel that it is reached by.
// Threads: main thread only.
#pragma once

#include "routing/ProxyConfig.h"
#include "screens/routing/RoutingContext.h"
#include "screens/routing/RowListModel.h"
#include "screens/theme/Theme.h"

#include <QFontMetrics>
#include <QStyledItemDelegate>

#include <string>

namespace fernwick {

// What the row shows of a proxy.
struct ProxyRow {
    support::Uuid id;
    std::string name;
    std::string address;
    std::int64_t port = 0;
    ProxyProtocol proto = ProxyProtocol::socks5;
    QString tunnel; // empty when there is none, or none of that id

    bool operator==(const ProxyRow&) const = default;

    ProxyRow(const ProxyConfig& proxy, const TunnelNames& tunnels);
    [[nodiscard]] QString title() const;
    [[nodiscard]] QString spoken() const;
    [[nodiscard]] QString addressText() const;
};

using ProxyListModel = RowListModel<ProxyRow>;

class ProxyRowDelegate final : public QStyledItemDelegate {
public:
    ProxyRowDelegate(const Theme& theme, const ProxyListModel& model, QObject* parent);

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

private:
    void paintBadge(QPainter& painter, const QRect& area, ProxyProtocol proto) const;
    void paintAddress(QPainter& painter, const QRect& line, const ProxyRow& row) const;
    [[nodiscard]] int textHeight() const;

    const Theme& theme_;
    const ProxyListModel& model_;
    QFont nameFont_;
    QFont addressFont_;
    QFont badgeFont_;
    QFont capsuleFont_;
};

} // namespace fernwick
