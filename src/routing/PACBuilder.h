// The proxy auto-config script, for applications that ask the system which proxy to use: a function of the
// address and the host that a browser is about to open. It knows nothing of applications, so what a rule says
// about them has no effect here.
// Threads: any.
#pragma once

#include "routing/AppRule.h"
#include "routing/ProxyConfig.h"
#include "tunnel/RoutingLayer.h"

#include <string>
#include <vector>

namespace fernwick {

// The script of the rules that are on, in their order; the first that matches decides, and what none matches
// goes direct. A rule for a proxy or a tunnel that is not there is left out. One without a usable host or port
// returns without a condition, so that nothing behind it is reached. Texts of the user go in as they are: a
// line feed in a name, or a quote in a host, is then part of the script. Names and passwords for proxies never
// stand in it. Lines end with a line feed, the last without. Cannot fail; time is linear in the input.
[[nodiscard]] std::string buildPAC(const std::vector<AppRule>& rules, const std::vector<ProxyConfig>& proxies,
                                   const TunnelPortMap& tunnelPorts);

} // namespace fernwick
