// What the window of proxies and rules says about a record, and which records a search keeps: functions of the
// records alone. Threads: main thread only.
#pragma once

#include "routing/AppRule.h"
#include "routing/ProxyConfig.h"
#include "screens/routing/RoutingContext.h"
#include "screens/theme/Parts.h"

#include <QString>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace fernwick {

// Some of a list's records, in its order; good until the list changes.
using ProxySelection = std::vector<const ProxyConfig*>;
using RuleSelection = std::vector<const AppRule*>;

// The proxies whose name or address contains the search text, letter case aside by the user's locale; all of
// them for an empty text.
[[nodiscard]] ProxySelection filteredProxies(const std::vector<ProxyConfig>& proxies,
                                             std::string_view searchText);

// The rules whose name, or whose target hosts written one behind the other with nothing between them, contain
// the search text. A search can thus match across two hosts. Applications and ports are not looked at.
[[nodiscard]] RuleSelection filteredRules(const std::vector<AppRule>& rules, std::string_view searchText);

// The protocol as the lists and panels spell it out; the raw text is for the editor and the preference file.
[[nodiscard]] QString protocolText(ProxyProtocol proto);
[[nodiscard]] NamedColor protocolColor(ProxyProtocol proto);

[[nodiscard]] QString actionText(RuleAction action);
[[nodiscard]] NamedColor actionColor(RuleAction action);
[[nodiscard]] Icon actionIcon(RuleAction action);

// The target hosts of a rule that are not empty, as far as a row needs them.
struct NamedHosts {
    std::string first;
    std::size_t count = 0;

    bool operator==(const NamedHosts&) const = default;
};

[[nodiscard]] NamedHosts namedHosts(const AppRule& rule);

// The hosts in a few words: "Any host", the only one, or "<first> +<n-1> more".
[[nodiscard]] QString hostSummary(const NamedHosts& hosts);

// "<n> proxy", with an "s" behind it unless there is one.
[[nodiscard]] QString proxyCountText(std::size_t count);

// "<enabled>/<total> active".
[[nodiscard]] QString activeCountText(const std::vector<AppRule>& rules);

// "Used by <n> Rule", with an "s" behind it unless there is one.
[[nodiscard]] QString usedByTitle(std::size_t count);

// The name of a tunnel, ready to be drawn; absent without an id or when the snapshot has no such tunnel.
[[nodiscard]] std::optional<QString> tunnelName(const TunnelNames& tunnels,
                                                const std::optional<support::Uuid>& id);

} // namespace fernwick
