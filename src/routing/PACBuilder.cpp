#include "routing/PACBuilder.h"

#include "routing/PACConditions.h"
#include "routing/TextLines.h"

#include <cstddef>
#include <optional>
#include <string_view>
#include <unordered_map>

namespace fernwick {

namespace {

// What a rule returns: the proxy, and how the statement goes on behind it. The texts lie elsewhere.
struct Returned {
    std::string_view proxy;
    std::string_view ending;
};

// Every proxy and live tunnel as the script names it. Of proxies with one id, the first counts.
class PACProxies {
public:
    PACProxies(const std::vector<ProxyConfig>& proxies, const TunnelPortMap& tunnelPorts) {
        tunnels_.reserve(tunnelPorts.size());
        for (const auto& [id, port] : tunnelPorts) {
            tunnels_.emplace(id, "SOCKS5 127.0.0.1:" + port);
        }
        proxies_.reserve(proxies.size());
        for (const auto& proxy : proxies) {
            proxies_.try_emplace(proxy.id, textOf(proxy, tunnelPorts));
        }
    }

    // Absent for a rule whose proxy or tunnel is not there. Good as long as the object.
    [[nodiscard]] std::optional<Returned> of(const AppRule& rule) const {
        switch (rule.action) {
        case RuleAction::block:
            return Returned{"PROXY 0.0.0.0:0", "\";"};
        case RuleAction::direct:
            return Returned{"DIRECT", "\";"};
        case RuleAction::proxy:
            return find(proxies_, rule.proxyID);
        case RuleAction::tunnel:
            return find(tunnels_, rule.tunnelID);
        }
        return std::nullopt;
    }

private:
    using Texts = std::unordered_map<support::Uuid, std::string>;

    // A proxy behind a tunnel that is down keeps its own address.
    static std::string textOf(const ProxyConfig& proxy, const TunnelPortMap& tunnelPorts) {
        const std::string keyword = proxy.proto == ProxyProtocol::https ? "PROXY " : "SOCKS5 ";
        const auto live = proxy.tunnelID ? tunnelPorts.find(*proxy.tunnelID) : tunnelPorts.end();
        if (live != tunnelPorts.end()) {
            return keyword + "127.0.0.1:" + live->second;
        }
        return keyword + proxy.address + ":" + std::to_string(proxy.port);
    }

    static std::optional<Returned> find(const Texts& texts, const std::optional<support::Uuid>& id) {
        const auto found = id ? texts.find(*id) : texts.end();
        return found == texts.end() ? std::nullopt : std::optional(Returned{found->second, "; DIRECT\";"});
    }

    Texts tunnels_;
    Texts proxies_;
};

void appendRule(std::string& text, const AppRule& rule, const Returned& returned) {
    appendPieces(text, "  // Rule: ", rule.name, "\n  ");
    const auto start = text.size();
    appendPieces(text, "if (");
    const auto condition = text.size();
    appendCondition(text, rule);
    if (text.size() > condition) {
        appendPieces(text, ") { return \"", returned.proxy, returned.ending, " }\n\n");
    } else {
        text.resize(start);
        appendPieces(text, "return \"", returned.proxy, returned.ending, "\n\n");
    }
}

// About how long the script is, with elements of usual length rather too long than too short.
std::size_t expectedSize(const std::vector<AppRule>& rules) {
    constexpr std::size_t kOfRule = 150;
    constexpr std::size_t kOfElement = 80;
    std::size_t size = 100;
    for (const auto& rule : rules) {
        size += kOfRule + (rule.targetHosts.size() + rule.targetPorts.size()) * kOfElement;
    }
    return size;
}

} // namespace

std::string buildPAC(const std::vector<AppRule>& rules, const std::vector<ProxyConfig>& proxies,
                     const TunnelPortMap& tunnelPorts) {
    const PACProxies named(proxies, tunnelPorts);
    std::string text;
    text.reserve(expectedSize(rules)); // growing would copy it all
    appendPieces(text, "function FindProxyForURL(url, host) {\n\n");
    for (const auto& rule : rules) {
        if (const auto returned = rule.isEnabled ? named.of(rule) : std::nullopt) {
            appendRule(text, rule, *returned);
        }
    }
    appendPieces(text, "  return \"DIRECT\";\n}");
    return text;
}

} // namespace fernwick
