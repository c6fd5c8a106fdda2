#include "routing/ClashRules.h"

#include "routing/IPv4Text.h"
#include "routing/RuleElements.h"
#include "routing/TextLines.h"
#include "support/Text.h"

#include <array>
#include <bitset>
#include <cstddef>

namespace fernwick {

namespace {

constexpr std::string_view kPrelude = "  - AND,((NETWORK,udp),(DST-PORT,443)),REJECT\n"
                                      "  - DOMAIN-KEYWORD,apiv6,REJECT\n"
                                      "  - DOMAIN-KEYWORD,ipv6only,REJECT\n"
                                      "  - DOMAIN-SUFFIX,localhost,DIRECT\n"
                                      "  - IP-CIDR,127.0.0.0/8,DIRECT,no-resolve\n";

constexpr std::string_view kClosing = "  - IP-CIDR,192.168.0.0/16,DIRECT,no-resolve\n"
                                      "  - IP-CIDR,10.0.0.0/8,DIRECT,no-resolve\n"
                                      "  - IP-CIDR,172.16.0.0/12,DIRECT,no-resolve\n"
                                      "  - IP-CIDR,169.254.0.0/16,DIRECT,no-resolve\n"
                                      "  - IP-CIDR,224.0.0.0/4,DIRECT,no-resolve\n"
                                      "  - IP-CIDR,240.0.0.0/4,DIRECT,no-resolve\n"
                                      "  - MATCH,DIRECT\n";

// The networks that the tun device leaves alone. The first are left to it when a rule routes an address that
// begins so; of 172 that is any address, which is coarse and meant to be.
struct ExcludedNetwork {
    std::string_view network;
    std::string_view beginning; // empty: always excluded
};
constexpr std::array kExcluded{ExcludedNetwork{"192.168.0.0/16", "192.168."},
                               ExcludedNetwork{"10.0.0.0/8", "10."},
                               ExcludedNetwork{"172.16.0.0/12", "172."},
                               ExcludedNetwork{"100.64.0.0/10", ""},
                               ExcludedNetwork{"127.0.0.0/8", ""},
                               ExcludedNetwork{"169.254.0.0/16", ""},
                               ExcludedNetwork{"224.0.0.0/4", ""},
                               ExcludedNetwork{"240.0.0.0/4", ""}};

using RoutedNetworks = std::bitset<kExcluded.size()>;

void appendNetwork(std::string& text, std::string_view network, std::string_view target) {
    appendLine(text, "  - IP-CIDR,", network, ",", target, ",no-resolve");
}

// A range that does not parse gives no line.
void appendRange(std::string& text, std::string_view range, std::string_view target) {
    for (const auto& network : ipRangeToCIDRs(range).value_or(std::vector<std::string>{})) {
        appendNetwork(text, network, target);
    }
}

// What is left of a pattern without its asterisks, and without dots at the ends.
std::string keywordOf(std::string_view pattern) {
    std::string word(pattern);
    std::erase(word, '*');
    const auto begin = word.find_first_not_of('.');
    return begin == std::string::npos ? "" : word.substr(begin, word.find_last_not_of('.') + 1 - begin);
}

// A network, a range, a domain with its subdomains, or a part of one.
void appendHostRules(std::string& text, std::string_view host, std::string_view target) {
    const HostMarks has(host);
    if (has.slash) {
        appendNetwork(text, host, target);
    } else if (has.hyphen && support::startsWithNumber(host)) {
        appendRange(text, host, target);
    } else if (host.starts_with("*.")) {
        appendLine(text, "  - DOMAIN-SUFFIX,", host.substr(2), ",", target);
    } else if (has.asterisk) {
        appendLine(text, "  - DOMAIN-KEYWORD,", keywordOf(host), ",", target);
    } else if (!has.letter && isIPv4Literal(host)) {
        appendLine(text, "  - IP-CIDR,", host, "/32,", target, ",no-resolve");
    } else {
        appendLine(text, "  - DOMAIN,", host, ",", target, "\n  - DOMAIN-SUFFIX,", host, ",", target);
    }
}

void appendApplicationRules(std::string& text, std::string_view application, std::string_view target) {
    if (isIPv4Literal(application)) {
        appendLine(text, "  - IP-CIDR,", application, "/32,", target, ",no-resolve");
    } else if (application.contains('/') && support::startsWithNumber(application)) {
        appendNetwork(text, application, target);
    } else if (application.contains('-') && support::startsWithNumber(application)) {
        appendRange(text, application, target);
    } else {
        appendLine(text, "  - PROCESS-NAME,", application, ",", target);
    }
}

void appendRule(std::string& text, const AppRule& rule, std::string_view target) {
    forEachElement(rule.targetHosts, [&](std::string_view host) { appendHostRules(text, host, target); });
    forEachElement(rule.targetPorts,
                   [&](std::string_view port) { appendLine(text, "  - DST-PORT,", port, ",", target); });
    forEachElement(rule.applications,
                   [&](std::string_view application) { appendApplicationRules(text, application, target); });
}

// Marks the network that an address begins like.
void classifyPrivateNet(std::string_view address, RoutedNetworks& routed) {
    for (std::size_t at = 0; at < kExcluded.size(); ++at) {
        const auto beginning = kExcluded[at].beginning;
        if (!beginning.empty() && address.starts_with(beginning)) {
            routed.set(at);
            return;
        }
    }
}

// A network counts by what stands before the slash; anything else, ranges and beginnings of addresses such as
// "10" included, as if a dot followed.
void classifyHost(std::string_view host, RoutedNetworks& routed) {
    if (!host.starts_with('1')) {
        return; // as no private address does; spares the search for most hosts
    }
    if (const auto slash = host.find('/'); slash != std::string_view::npos) {
        classifyPrivateNet(host.substr(0, slash), routed);
    } else {
        classifyPrivateNet(std::string(host) + ".", routed);
    }
}

// Unlike a host, a range of addresses does not count.
void classifyApplication(std::string_view application, RoutedNetworks& routed) {
    if (isIPv4Literal(application) || (application.contains('/') && support::startsWithNumber(application))) {
        classifyPrivateNet(application.substr(0, application.find('/')), routed);
    }
}

RoutedNetworks routedPrivateNets(const std::vector<TargetedRule>& rules) {
    RoutedNetworks routed;
    for (const auto& [rule, target] : rules) {
        if (rule->action == RuleAction::proxy || rule->action == RuleAction::tunnel) {
            forEachElement(rule->targetHosts, [&](std::string_view host) { classifyHost(host, routed); });
            forEachElement(rule->applications,
                           [&](std::string_view application) { classifyApplication(application, routed); });
        }
    }
    return routed;
}

} // namespace

std::vector<TargetedRule> targetedRules(const std::vector<AppRule>& rules, const ClashProxies& proxies) {
    std::vector<TargetedRule> targeted;
    targeted.reserve(rules.size());
    for (const auto& rule : rules) {
        if (const auto target = rule.isEnabled ? proxies.ruleTarget(rule) : std::nullopt) {
            targeted.push_back({&rule, *target});
        }
    }
    return targeted;
}

std::size_t expectedSize(const std::vector<TargetedRule>& rules) {
    constexpr std::size_t kOfElement = 80; // the two lines of a domain of usual length, without the targets
    std::size_t size = kPrelude.size() + kClosing.size();
    for (const auto& [rule, target] : rules) {
        const auto elements = rule->targetHosts.size() + rule->targetPorts.size() + rule->applications.size();
        size += elements * (kOfElement + 2 * target.size());
    }
    return size;
}

void appendRules(std::string& text, const std::vector<TargetedRule>& rules) {
    text += kPrelude;
    for (const auto& [rule, target] : rules) {
        appendRule(text, *rule, target);
    }
    text += kClosing;
}

void appendExcludedNetworks(std::string& text, const std::vector<TargetedRule>& rules) {
    const auto routed = routedPrivateNets(rules);
    for (std::size_t at = 0; at < kExcluded.size(); ++at) {
        if (!routed.test(at)) {
            appendLine(text, "    - ", kExcluded[at].network);
        }
    }
}

} // namespace fernwick
