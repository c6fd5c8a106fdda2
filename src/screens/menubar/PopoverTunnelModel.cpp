#include "screens/menubar/PopoverTunnelModel.h"

#include "screens/theme/DisplayText.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace fernwick {

std::string endpointLabel(const Tunnel& tunnel) {
    return tunnel.localPort.empty() ? tunnel.host : tunnel.host + "-" + tunnel.localPort;
}

PopoverTunnelModel::PopoverTunnelModel(const TunnelStore& store, const TunnelManager& manager, QObject* parent)
    : QAbstractListModel(parent), store_(store), manager_(manager) {}

void PopoverTunnelModel::reload() {
    std::vector<PopoverTunnel> rows;
    rows.reserve(store_.tunnels().size());
    std::ranges::transform(store_.tunnels(), std::back_inserter(rows), [](const Tunnel& tunnel) {
        return PopoverTunnel{tunnel.id, displayLine(tunnel.name), displayLine(endpointLabel(tunnel))};
    });
    if (!std::ranges::equal(rows_, rows, {}, &PopoverTunnel::id, &PopoverTunnel::id)) {
        beginResetModel();
        rows_ = std::move(rows);
        endResetModel();
        return;
    }
    const auto before = std::exchange(rows_, std::move(rows));
    for (int row = 0; row < rowCount(); ++row) {
        if (tunnel(row) != before[static_cast<std::size_t>(row)]) {
            Q_EMIT dataChanged(index(row), index(row));
        }
    }
}

void PopoverTunnelModel::refreshStatuses(const std::unordered_set<support::Uuid>& ids) {
    for (int row = 0; row < rowCount(); ++row) {
        if (ids.contains(tunnel(row).id)) {
            Q_EMIT dataChanged(index(row), index(row), {kStatusRole});
        }
    }
}

int PopoverTunnelModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

QVariant PopoverTunnelModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= rowCount()) {
        return {};
    }
    const PopoverTunnel& shown = tunnel(index.row());
    if (role == Qt::DisplayRole) {
        return shown.name;
    }
    if (role == Qt::AccessibleTextRole) {
        const auto status = this->status(index.row()).value_or(TunnelStatus::idle()).statusText();
        return QStringLiteral("%1, %2, %3").arg(shown.name, displayLine(status), shown.endpoint);
    }
    return {};
}

} // namespace fernwick
