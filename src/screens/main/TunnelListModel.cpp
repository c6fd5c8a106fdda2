#include "screens/main/TunnelListModel.h"

#include "screens/theme/DisplayText.h"

#include <algorithm>
#include <iterator>
#include <span>
#include <tuple>

namespace fernwick {

namespace {

// How a list of rows became another one, by the ids of its tunnels.
struct Difference {
    int prefix = 0;  // rows that both lists begin with
    int removed = 0; // rows behind them that only the old list has
    int added = 0;   // rows behind them that only the new list has
};

Difference differenceOf(const std::vector<Tunnel>& before, const TunnelSelection& after) {
    const auto sameId = [](const Tunnel& left, const Tunnel* right) { return left.id == right->id; };
    const auto [oldStop, newStop] = std::ranges::mismatch(before, after, sameId);
    auto oldEnd = before.end();
    auto newEnd = after.end();
    while (oldEnd != oldStop && newEnd != newStop && sameId(*std::prev(oldEnd), *std::prev(newEnd))) {
        --oldEnd;
        --newEnd;
    }
    return {static_cast<int>(oldStop - before.begin()), static_cast<int>(oldEnd - oldStop),
            static_cast<int>(newEnd - newStop)};
}

std::vector<Tunnel> copiesOf(std::span<const Tunnel* const> tunnels) {
    std::vector<Tunnel> copies;
    copies.reserve(tunnels.size());
    std::ranges::transform(tunnels, std::back_inserter(copies), [](const Tunnel* tunnel) { return *tunnel; });
    return copies;
}

// Whether the rows of the two are the same to the eye, the status aside.
bool looksLike(const Tunnel& one, const Tunnel& other) {
    const auto shown = [](const Tunnel& tunnel) {
        return std::tie(tunnel.name, tunnel.user, tunnel.host, tunnel.tunnelType, tunnel.tagIDs);
    };
    return shown(one) == shown(other);
}

QString text(std::string_view utf8) {
    return QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
}

} // namespace

TunnelListModel::TunnelListModel(const TunnelManager& manager, const TagManager& tags, QObject* parent)
    : QAbstractListModel(parent), manager_(manager), tags_(tags) {}

void TunnelListModel::setTunnels(const TunnelSelection& tunnels) {
    const auto [prefix, removed, added] = differenceOf(tunnels_, tunnels);
    if (removed > 0 && added > 0) {
        beginResetModel();
        tunnels_ = copiesOf(tunnels);
        endResetModel();
        return;
    }
    if (removed > 0) {
        beginRemoveRows({}, prefix, prefix + removed - 1);
        tunnels_.erase(tunnels_.begin() + prefix, tunnels_.begin() + prefix + removed);
        endRemoveRows();
    } else if (added > 0) {
        const auto copies = copiesOf(
            std::span(tunnels).subspan(static_cast<std::size_t>(prefix), static_cast<std::size_t>(added)));
        beginInsertRows({}, prefix, prefix + added - 1);
        tunnels_.insert(tunnels_.begin() + prefix, copies.begin(), copies.end());
        endInsertRows();
    }
    takeChanges(tunnels);
}

// Copies only what differs: a keystroke in one of ten thousand tunnels costs one copy. What a row does not
// show, as when its tunnel was last connected, is nothing that the list is told.
void TunnelListModel::takeChanges(const TunnelSelection& tunnels) {
    for (int row = 0; row < rowCount(); ++row) {
        auto& held = tunnels_[static_cast<std::size_t>(row)];
        if (const Tunnel& given = *tunnels[static_cast<std::size_t>(row)]; held != given) {
            const bool seen = !looksLike(held, given);
            held = given;
            if (seen) {
                Q_EMIT dataChanged(index(row), index(row));
            }
        }
    }
}

void TunnelListModel::refreshStatuses(const std::unordered_set<support::Uuid>& ids) {
    for (int row = 0; row < rowCount(); ++row) {
        if (ids.contains(tunnel(row).id)) {
            Q_EMIT dataChanged(index(row), index(row), {kStatusRole});
        }
    }
}

void TunnelListModel::refreshTags() {
    if (!tunnels_.empty()) {
        Q_EMIT dataChanged(index(0), index(rowCount() - 1));
    }
}

std::vector<const TunnelTag*> TunnelListModel::tags(int row) const {
    std::vector<const TunnelTag*> found;
    for (const auto& id : tunnel(row).tagIDs) {
        if (const TunnelTag* tag = tags_.find(id)) {
            found.push_back(tag);
        }
    }
    return found;
}

bool TunnelListModel::hasTags(int row) const {
    return std::ranges::any_of(tunnel(row).tagIDs, [&](const auto& id) { return tags_.find(id) != nullptr; });
}

int TunnelListModel::rowOf(const support::Uuid& id) const {
    const auto found = std::ranges::find(tunnels_, id, &Tunnel::id);
    return found != tunnels_.end() ? static_cast<int>(found - tunnels_.begin()) : -1;
}

int TunnelListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(tunnels_.size());
}

QVariant TunnelListModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= rowCount()) {
        return {};
    }
    switch (role) {
    case Qt::DisplayRole:
        return displayLine(tunnel(index.row()).name);
    case Qt::AccessibleTextRole:
        return accessibleText(index.row());
    default:
        return {};
    }
}

QString TunnelListModel::accessibleText(int row) const {
    const Tunnel& shown = tunnel(row);
    const std::string status = this->status(row).value_or(TunnelStatus::idle()).statusText();
    return QStringLiteral("%1, %2, %3")
        .arg(displayLine(shown.name), text(status), displayLine(shown.user + "@" + shown.host));
}

} // namespace fernwick
