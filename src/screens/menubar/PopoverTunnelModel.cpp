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

PopoverTunnelModel::Row PopoverTunnelModel::rowOf(const Tunnel& tunnel) {
    std::string endpoint = endpointLabel(tunnel);
    return {{tunnel.id, displayLine(tunnel.name), displayLine(endpoint)}, tunnel.name, std::move(endpoint)};
}

void PopoverTunnelModel::reload() {
    const auto& tunnels = store_.tunnels();
    if (!std::ranges::equal(rows_, tunnels, {}, [](const Row& row) { return row.shown.id; }, &Tunnel::id)) {
        beginResetModel();
        rows_.clear();
        std::ranges::transform(tunnels, std::back_inserter(rows_), rowOf);
        endResetModel();
        return;
    }
    for (int row = 0; row < rowCount(); ++row) {
        auto& held = rows_[static_cast<std::size_t>(row)];
        const Tunnel& given = tunnels[static_cast<std::size_t>(row)];
        if (held.name != given.name || held.endpoint != endpointLabel(given)) {
            held = rowOf(given);
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
