#include "screens/main/TunnelListModel.h"

#include "screens/theme/DisplayText.h"

#include <algorithm>
#include <iterator>

namespace fernwick {

namespace {

// How a list of rows became another one, by the ids of its tunnels.
struct Difference {
    int prefix = 0;  // rows that both lists begin with
    int removed = 0; // rows behind them that only the old list has
    int added = 0;   // rows behind them that only the new list has
};

Difference differenceOf(const std::vector<Tunnel>& before, const std::vector<Tunnel>& after) {
    const auto sameId = [](const Tunnel& left, const Tunnel& right) { return left.id == right.id; };
    const auto [oldStop, newStop] = std::ranges::mismatch(before, after, sameId);
    auto oldEnd = before.end();
    auto newEnd = after.end();
    while (oldEnd != oldStop && newEnd != newStop && std::prev(oldEnd)->id == std::prev(newEnd)->id) {
        --oldEnd;
        --newEnd;
    }
    return {static_cast<int>(oldStop - before.begin()), static_cast<int>(oldEnd - oldStop),
            static_cast<int>(newEnd - newStop)};
}

QString text(std::string_view utf8) {
    return QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
}

} // namespace

TunnelListModel::TunnelListModel(const TunnelManager& manager, const TagManager& tags, QObject* parent)
    : QAbstractListModel(parent), manager_(manager), tags_(tags) {}

void TunnelListModel::setTunnels(std::vector<Tunnel> tunnels) {
    const Difference difference = differenceOf(tunnels_, tunnels);
    if (difference.removed > 0 && difference.added > 0) {
        beginResetModel();
        tunnels_ = std::move(tunnels);
        endResetModel();
        return;
    }
    std::vector<Tunnel> before;
    if (difference.removed > 0) {
        beginRemoveRows({}, difference.prefix, difference.prefix + difference.removed - 1);
        const auto first = tunnels_.begin() + difference.prefix;
        tunnels_.erase(first, first + difference.removed);
        before = std::exchange(tunnels_, std::move(tunnels));
        endRemoveRows();
    } else if (difference.added > 0) {
        beginInsertRows({}, difference.prefix, difference.prefix + difference.added - 1);
        before = std::exchange(tunnels_, std::move(tunnels));
        const auto first = tunnels_.begin() + difference.prefix;
        before.insert(before.begin() + difference.prefix, first, first + difference.added);
        endInsertRows();
    } else {
        before = std::exchange(tunnels_, std::move(tunnels));
    }
    tellChangedRows(before);
}

void TunnelListModel::tellChangedRows(const std::vector<Tunnel>& before) {
    for (int row = 0; row < rowCount(); ++row) {
        if (before[static_cast<std::size_t>(row)] != tunnel(row)) {
            Q_EMIT dataChanged(index(row), index(row));
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
