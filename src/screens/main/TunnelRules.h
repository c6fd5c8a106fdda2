// What the sidebar's lists, counts and new tunnels are made of, as functions of the catalogue alone.
// Threads: main thread only.
#pragma once

#include "catalogue/Tunnel.h"
#include "catalogue/TunnelTag.h"
#include "tunnel/TunnelManager.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace fernwick {

// Some of a list's tunnels, in its order; good until the list changes.
using TunnelSelection = std::vector<const Tunnel*>;

// The tunnels, in their order, whose name, host or user contains the search text (letter case aside, by the
// user's locale; an empty text is in everything) and that bear the tag, if one is chosen.
[[nodiscard]] TunnelSelection filteredTunnels(const std::vector<Tunnel>& tunnels, std::string_view searchText,
                                              const std::optional<TunnelTag>& selectedTag);

struct TunnelStatistics {
    std::size_t total = 0;
    std::size_t active = 0; // connecting or connected

    bool operator==(const TunnelStatistics&) const = default;
};

[[nodiscard]] TunnelStatistics statisticsOf(const std::vector<Tunnel>& tunnels, const TunnelManager& manager);

// A copy with an id of its own and " Copy" behind its name; everything else is kept.
[[nodiscard]] Tunnel duplicateOf(const Tunnel& tunnel);

// What is typed into the sheet for a new tunnel. Nothing is trimmed or checked for being a number.
struct NewTunnelFields {
    std::string name;
    std::string host;
    std::string user;
    std::string localPort;

    // Whether there is enough for a tunnel: a host and a user.
    [[nodiscard]] bool canCreate() const { return !host.empty() && !user.empty(); }
};

// A tunnel with a fresh id from the fields; "New Tunnel" stands for an empty name.
[[nodiscard]] Tunnel newTunnel(const NewTunnelFields& fields, support::Date now);

} // namespace fernwick
