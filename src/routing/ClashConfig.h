// The configuration of the proxy engine, as it reads it from its file (YAML, Clash Meta's format).
// Threads: any.
#pragma once

#include "catalogue/Tunnel.h"
#include "platform/Clock.h"
#include "routing/AppRule.h"
#include "routing/ProxyConfig.h"
#include "tunnel/RoutingLayer.h"

#include <string>
#include <vector>

namespace fernwick {

// The whole text, for the tunnels that are live according to `tunnelPorts`, all proxies, and the rules that are
// switched on. The clock is asked for the line that says when it was made. Cannot fail; texts of the user go in
// as they are, so that one which is no YAML makes the engine refuse the whole. Time is linear in the input.
[[nodiscard]] std::string generateClashConfig(const std::vector<Tunnel>& tunnels,
                                              const TunnelPortMap& tunnelPorts,
                                              const std::vector<ProxyConfig>& proxies,
                                              const std::vector<AppRule>& rules, const platform::Clock& clock);

} // namespace fernwick
