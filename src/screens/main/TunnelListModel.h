// The rows of the sidebar: the filtered tunnels in their order. A new list is compared with the old one, so
// that an edit, an added and a removed tunnel leave the other rows, their selection and the scroll position
// alone. Threads: main thread only.
#pragma once

#include "catalogue/TagManager.h"
#include "catalogue/Tunnel.h"
#include "screens/main/TunnelRules.h"
#include "tunnel/TunnelManager.h"

#include <QAbstractListModel>

#include <optional>
#include <unordered_set>
#include <vector>

namespace fernwick {

class TunnelListModel final : public QAbstractListModel {
public:
    // The role of what changes with a tunnel's status alone; such a change moves no row.
    static constexpr int kStatusRole = Qt::UserRole + 1;

    TunnelListModel(const TunnelManager& manager, const TagManager& tags, QObject* parent);

    // Shows copies of these tunnels.
    void setTunnels(const TunnelSelection& tunnels);

    // Says that the status of these tunnels changed.
    void refreshStatuses(const std::unordered_set<support::Uuid>& ids);

    // Says that tags changed: colours, names, and with them the height of rows.
    void refreshTags();

    // The tunnel of a row, which must exist.
    [[nodiscard]] const Tunnel& tunnel(int row) const { return tunnels_[static_cast<std::size_t>(row)]; }
    [[nodiscard]] std::optional<TunnelStatus> status(int row) const { return manager_.status(tunnel(row).id); }

    // The tags of a row that exist, in the tunnel's order. The pointers are good until the tags change.
    [[nodiscard]] std::vector<const TunnelTag*> tags(int row) const;
    [[nodiscard]] bool hasTags(int row) const;

    // The first row of that tunnel, or -1.
    [[nodiscard]] int rowOf(const support::Uuid& id) const;

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;

private:
    void takeChanges(const TunnelSelection& tunnels);
    [[nodiscard]] QString accessibleText(int row) const;

    const TunnelManager& manager_;
    const TagManager& tags_;
    std::vector<Tunnel> tunnels_;
};

} // namespace fernwick
