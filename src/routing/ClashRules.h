// The rules of the engine's configuration. Hosts, ports and applications of a rule are alternatives, each a
// line of its own; nothing in them is quoted or checked. Threads: any.
#pragma once

#include "routing/AppRule.h"
#include "routing/ClashProxies.h"

#include <string>
#include <string_view>
#include <vector>

namespace fernwick {

// Appends the lines for one host pattern: a network, a range, a domain with its subdomains, or a part of one.
void appendHostRules(std::string& text, std::string_view host, std::string_view target);

// Appends what stands below "rules:". A rule without a target adds nothing.
void appendRules(std::string& text, const std::vector<AppRule>& rules, const ClashProxies& proxies);

// Appends the networks that the tun device leaves alone, one to a line: private and special ones, without the
// private ones that a rule sends into a tunnel or a proxy.
void appendExcludedNetworks(std::string& text, const std::vector<AppRule>& rules, const ClashProxies& proxies);

} // namespace fernwick
