// The rules of the engine's configuration. Hosts, ports and applications of a rule are alternatives, each a
// line of its own; nothing in them is quoted or checked. Threads: any.
#pragma once

#include "routing/AppRule.h"
#include "routing/ClashProxies.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace fernwick {

// A rule that is on, and where the engine sends what it matches. The rule and the text lie elsewhere.
struct TargetedRule {
    const AppRule* rule;
    std::string_view target;
};

// The rules that are on and have a target, in their order. Good as long as both arguments.
[[nodiscard]] std::vector<TargetedRule> targetedRules(const std::vector<AppRule>& rules,
                                                      const ClashProxies& proxies);

// About how many bytes `appendRules` adds, with elements of usual length rather too many than too few.
[[nodiscard]] std::size_t expectedSize(const std::vector<TargetedRule>& rules);

// Appends what stands below "rules:".
void appendRules(std::string& text, const std::vector<TargetedRule>& rules);

// Appends the networks that the tun device leaves alone, one to a line: private and special ones, without the
// private ones that a rule sends into a tunnel or a proxy.
void appendExcludedNetworks(std::string& text, const std::vector<TargetedRule>& rules);

} // namespace fernwick
