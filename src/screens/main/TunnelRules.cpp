#include "screens/main/TunnelRules.h"

#include "support/Text.h"

#include <algorithm>

namespace fernwick {

namespace {

bool matches(const Tunnel& tunnel, const support::CaselessNeedle& needle) {
    return needle.isIn(tunnel.name) || needle.isIn(tunnel.host) || needle.isIn(tunnel.user);
}

bool bears(const Tunnel& tunnel, const support::Uuid& tag) {
    return std::ranges::find(tunnel.tagIDs, tag) != tunnel.tagIDs.end();
}

} // namespace

TunnelSelection filteredTunnels(const std::vector<Tunnel>& tunnels, std::string_view searchText,
                                const std::optional<TunnelTag>& selectedTag) {
    std::optional<support::CaselessNeedle> needle;
    if (!searchText.empty()) {
        needle.emplace(searchText);
    }
    TunnelSelection kept;
    for (const Tunnel& tunnel : tunnels) {
        if ((!needle || matches(tunnel, *needle)) && (!selectedTag || bears(tunnel, selectedTag->id))) {
            kept.push_back(&tunnel);
        }
    }
    return kept;
}

TunnelStatistics statisticsOf(const std::vector<Tunnel>& tunnels, const TunnelManager& manager) {
    const auto active =
        std::ranges::count_if(tunnels, [&](const Tunnel& tunnel) { return manager.isActive(tunnel.id); });
    return {tunnels.size(), static_cast<std::size_t>(active)};
}

Tunnel duplicateOf(const Tunnel& tunnel) {
    Tunnel copy = tunnel;
    copy.id = support::Uuid::random();
    copy.name += " Copy";
    return copy;
}

Tunnel newTunnel(const NewTunnelFields& fields, support::Date now) {
    Tunnel tunnel; // its other members start as a new tunnel has them
    tunnel.id = support::Uuid::random();
    tunnel.name = fields.name.empty() ? "New Tunnel" : fields.name;
    tunnel.host = fields.host;
    tunnel.user = fields.user;
    tunnel.localPort = fields.localPort;
    tunnel.createdAt = now;
    return tunnel;
}

} // namespace fernwick
