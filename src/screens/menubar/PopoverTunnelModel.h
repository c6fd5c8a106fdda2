// The rows of the popover: the tunnels in the order of the catalogue, as little of each as a row shows.
// Threads: main thread only.
#pragma once

#include "catalogue/TunnelStore.h"
#include "tunnel/TunnelManager.h"

#include <QAbstractListModel>
#include <QString>

#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

namespace fernwick {

// What stands below a tunnel's name: its host, and "-" and the local port unless that is empty.
[[nodiscard]] std::string endpointLabel(const Tunnel& tunnel);

// One row; the texts are fit to be drawn.
struct PopoverTunnel {
    support::Uuid id;
    QString name;
    QString endpoint;
};

class PopoverTunnelModel final : public QAbstractListModel {
public:
    // The role of what changes with a tunnel's status alone.
    static constexpr int kStatusRole = Qt::UserRole + 1;

    // Both outlive the model.
    PopoverTunnelModel(const TunnelStore& store, const TunnelManager& manager, QObject* parent);

    // Takes the catalogue over as it is now. The same tunnels in the same order stay where they are.
    void reload();

    // Says that the status of these tunnels changed.
    void refreshStatuses(const std::unordered_set<support::Uuid>& ids);

    // The tunnel of a row, which must exist.
    [[nodiscard]] const PopoverTunnel& tunnel(int row) const {
        return rows_[static_cast<std::size_t>(row)].shown;
    }
    [[nodiscard]] std::optional<TunnelStatus> status(int row) const { return manager_.status(tunnel(row).id); }
    [[nodiscard]] bool isActive(int row) const { return manager_.isActive(tunnel(row).id); }

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;

private:
    // What is shown, and the texts that it was made of: making it is dearer than looking whether they changed.
    struct Row {
        PopoverTunnel shown;
        std::string name;
        std::string endpoint;
    };

    [[nodiscard]] static Row rowOf(const Tunnel& tunnel);

    const TunnelStore& store_;
    const TunnelManager& manager_;
    std::vector<Row> rows_;
};

} // namespace fernwick
