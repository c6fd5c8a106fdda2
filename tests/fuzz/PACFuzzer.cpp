// Reads any bytes as a catalogue (SampleCatalogue.h) and writes the proxy auto-config script for it. Whatever
// the user's texts are (a line feed aside, which would be a line of its own), the rules that stand in the
// script must be those that are on and lead somewhere, in their order, each with one statement of a known form;
// names and passwords for proxies must not be in it.
#include "SampleCatalogue.h"
#include "routing/PACBuilder.h"

#include <algorithm>
#include <string>
#include <string_view>

namespace {

using namespace fernwick;
using fuzz::Catalogue;
using fuzz::require;

constexpr std::string_view kBegin = "function FindProxyForURL(url, host) {\n\n";
constexpr std::string_view kEnd = "  return \"DIRECT\";\n}";
constexpr std::string_view kSecret = "\x01\x02secret\x02\x01";

bool leadsSomewhere(const Catalogue& catalogue, const AppRule& rule) {
    switch (rule.action) {
    case RuleAction::tunnel:
        return rule.tunnelID && catalogue.ports.contains(*rule.tunnelID);
    case RuleAction::proxy:
        return rule.proxyID.has_value(); // the sample has no ids of proxies that are not there
    default:
        return true;
    }
}

std::string statementOf(const Catalogue& catalogue, const AppRule& rule) {
    switch (rule.action) {
    case RuleAction::block:
        return "return \"PROXY 0.0.0.0:0\";";
    case RuleAction::direct:
        return "return \"DIRECT\";";
    case RuleAction::tunnel:
        return "return \"SOCKS5 127.0.0.1:" + catalogue.ports.at(*rule.tunnelID) + "; DIRECT\";";
    case RuleAction::proxy:
        break;
    }
    const auto& proxy = *std::ranges::find(catalogue.proxies, rule.proxyID, &ProxyConfig::id);
    const auto endpoint = proxy.tunnelID ? "127.0.0.1:" + catalogue.ports.at(*proxy.tunnelID)
                                         : proxy.address + ":" + std::to_string(proxy.port);
    return std::string("return \"") + (proxy.proto == ProxyProtocol::https ? "PROXY " : "SOCKS5 ") + endpoint +
           "; DIRECT\";";
}

// The text of one rule, up to its empty line.
void checkRule(const Catalogue& catalogue, const AppRule& rule, std::string_view block) {
    const std::string head = "  // Rule: " + rule.name + "\n  ";
    require(block.starts_with(head), "a rule out of its order", block);
    block.remove_prefix(head.size());
    const auto statement = statementOf(catalogue, rule);
    const bool conditional = block.starts_with("if (");
    require(conditional ? block.ends_with(") { " + statement + " }") : block == statement,
            "a statement of no known form", block);
    constexpr std::size_t kLongest =
        600; // of an expression, beside the user's text, which stands twice at most
    std::size_t most = kLongest + rule.targetHosts.size() * kLongest + rule.targetPorts.size() * kLongest;
    for (const auto& host : rule.targetHosts) {
        most += 2 * host.size();
    }
    require(block.size() <= most + statement.size(), "a condition that is too long", block);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string bytes(data, data + size);
    if (bytes.contains(kSecret)) {
        return 0;
    }
    auto catalogue = fuzz::catalogueOf(bytes);
    for (auto& proxy : catalogue.proxies) {
        proxy.authentication = {true, std::string(kSecret), std::string(kSecret)};
    }
    const auto script = buildPAC(catalogue.rules, catalogue.proxies, catalogue.ports);
    require(script.starts_with(kBegin) && script.ends_with(kEnd), "no script", script);
    require(!script.contains(kSecret), "a password", script);
    std::string_view rest = std::string_view(script).substr(kBegin.size());
    for (const auto& rule : catalogue.rules) {
        if (rule.isEnabled && leadsSomewhere(catalogue, rule)) {
            const auto end = rest.find("\n\n");
            require(end != std::string_view::npos, "a rule that is missing", rest);
            checkRule(catalogue, rule, rest.substr(0, end));
            rest.remove_prefix(end + 2);
        }
    }
    require(rest == kEnd, "a rule too many", rest);
    return 0;
}
