#include "routing/ClashProxies.h"

#include "routing/TextLines.h"

#include <unordered_set>
#include <utility>

namespace fernwick {

namespace {

void appendTunnelPort(std::string& text, std::string_view name, std::string_view port) {
    appendLine(text, "  - name: \"", name,
               "\"\n"
               "    type: socks5\n"
               "    server: 127.0.0.1\n"
               "    port: ",
               port,
               "\n"
               "    udp: false");
}

void appendProxy(std::string& text, std::string_view name, const ProxyConfig& proxy) {
    const bool http = proxy.proto == ProxyProtocol::https;
    appendLine(text, "  - name: \"", name, "\"");
    appendLine(text, "    type: ", http ? "http" : "socks5"); // the engine does not know SOCKS4
    appendLine(text, "    server: ", proxy.address);
    appendLine(text, "    port: ", std::to_string(proxy.port));
    appendLine(text, "    udp: ", http ? "false" : "true");
    if (proxy.authentication.enabled) {
        appendLine(text, "    username: ", proxy.authentication.username);
        appendLine(text, "    password: ", proxy.authentication.password);
    }
}

// A group of one member, which can be switched over to DIRECT.
void appendGroup(std::string& text, std::string_view prefix, std::string_view name) {
    appendLine(text, "  - name: \"", prefix, name,
               "\"\n"
               "    type: select\n"
               "    proxies:\n"
               "      - \"",
               name,
               "\"\n"
               "      - DIRECT");
}

constexpr std::string_view kTunnelGroup = "TUN_";
constexpr std::string_view kProxyGroup = "GRP_";

} // namespace

ClashProxies::ClashProxies(const std::vector<Tunnel>& tunnels, const TunnelPortMap& tunnelPorts,
                           const std::vector<ProxyConfig>& proxies)
    : tunnels_(tunnels), ports_(tunnelPorts) {
    nameTunnels();
    nameProxies(proxies);
    findTargets(proxies);
}

const std::string* ClashProxies::livePort(const support::Uuid& tunnelID) const {
    const auto found = ports_.find(tunnelID);
    return found != ports_.end() && !found->second.empty() ? &found->second : nullptr;
}

void ClashProxies::nameTunnels() {
    TakenNames used;
    for (const auto& tunnel : tunnels_) {
        if (const auto* const port = livePort(tunnel.id)) {
            auto name = sanitizeName(tunnel.name);
            if (used.contains(name)) {
                name += "-" + *port;
            }
            tunnelNames_[tunnel.id] = used.takeFree(name);
        }
    }
    for (const auto& [id, name] : tunnelNames_) {
        emitted_.take(name);
    }
}

void ClashProxies::nameProxies(const std::vector<ProxyConfig>& proxies) {
    for (const auto& proxy : proxies) {
        auto& list = proxy.tunnelID ? tunnelled_ : direct_;
        list.push_back({&proxy, sanitizeName(proxy.effectiveName()), "", nullptr});
    }
    for (auto& entry : direct_) {
        entry.emitted = emitted_.takeFree(entry.base);
    }
    for (auto& entry : tunnelled_) {
        const auto* const port = livePort(*entry.proxy->tunnelID);
        if (port != nullptr && emitted_.take(entry.base)) { // unlike the others, never under a second name
            entry.emitted = entry.base;
            entry.tunnelPort = port;
        }
    }
}

void ClashProxies::findTargets(const std::vector<ProxyConfig>& proxies) {
    for (const auto& [id, name] : tunnelNames_) {
        tunnelTargets_[id].append(kTunnelGroup).append(name);
    }
    for (const auto& proxy : proxies) {
        const auto [found, isFirst] = proxyTargets_.try_emplace(proxy.id);
        if (!isFirst) {
            continue;
        }
        if (const auto name = sanitizeName(proxy.effectiveName()); emitted_.contains(name)) {
            found->second.append(kProxyGroup).append(name);
        }
    }
}

std::optional<std::string_view> ClashProxies::ruleTarget(const AppRule& rule) const {
    const auto lookUp = [](const auto& targets, const auto& id) -> std::optional<std::string_view> {
        const auto found = id ? targets.find(*id) : targets.end();
        return found != targets.end() && !found->second.empty() ? std::optional(std::string_view(found->second))
                                                                : std::nullopt;
    };
    switch (rule.action) {
    case RuleAction::direct:
        return "DIRECT";
    case RuleAction::block:
        return "REJECT";
    case RuleAction::proxy:
        return lookUp(proxyTargets_, rule.proxyID);
    case RuleAction::tunnel:
        return lookUp(tunnelTargets_, rule.tunnelID);
    }
    return std::nullopt;
}

std::size_t ClashProxies::expectedSize() const {
    constexpr std::size_t kOfEach = 300; // a proxy, a member and a group, names of usual length included
    return kOfEach * (1 + tunnelNames_.size() + direct_.size() + tunnelled_.size());
}

void ClashProxies::appendProxies(std::string& text) const {
    const auto start = text.size();
    std::unordered_set<std::string_view> written;
    for (const auto& tunnel : tunnels_) {
        const auto found = tunnelNames_.find(tunnel.id);
        if (found != tunnelNames_.end() && written.insert(found->second).second) {
            appendTunnelPort(text, found->second, *livePort(tunnel.id));
            appendLine(text, "    skip-cert-verify: false");
        }
    }
    for (const auto& entry : direct_) {
        appendProxy(text, entry.emitted, *entry.proxy);
    }
    for (const auto& entry : tunnelled_) {
        if (entry.tunnelPort != nullptr) {
            appendTunnelPort(text, entry.emitted, *entry.tunnelPort);
        }
    }
    if (text.size() == start) {
        appendLine(text, "  []");
    }
}

// Under their base names, so that the second of two proxies of one name ("HK-2") is no member.
std::vector<std::string_view> ClashProxies::groupMembers() const {
    std::vector<std::string_view> members;
    std::unordered_set<std::string_view> seen;
    const auto add = [&](std::string_view name) {
        if (seen.insert(name).second) {
            members.push_back(name);
        }
    };
    for (const auto& tunnel : tunnels_) {
        if (const auto found = tunnelNames_.find(tunnel.id); found != tunnelNames_.end()) {
            add(found->second);
        }
    }
    for (const auto* const list : {&direct_, &tunnelled_}) {
        for (const auto& entry : *list) {
            if (emitted_.contains(entry.base)) {
                add(entry.base);
            }
        }
    }
    return members;
}

void ClashProxies::appendGroups(std::string& text) const {
    appendLine(text, "  - name: \"PROXY\"");
    appendLine(text, "    type: select");
    appendLine(text, "    proxies:");
    for (const auto member : groupMembers()) {
        appendLine(text, "      - \"", member, "\"");
    }
    appendLine(text, "      - DIRECT");
    for (const auto& tunnel : tunnels_) {
        if (const auto found = tunnelNames_.find(tunnel.id); found != tunnelNames_.end()) {
            appendGroup(text, kTunnelGroup, found->second);
        }
    }
    std::unordered_set<std::string_view> grouped;
    for (const auto& entry : direct_) { // two of one name have two groups
        appendGroup(text, kProxyGroup, entry.base);
        grouped.insert(entry.base);
    }
    for (const auto& entry : tunnelled_) {
        if (tunnelNames_.contains(*entry.proxy->tunnelID) && emitted_.contains(entry.base) &&
            grouped.insert(entry.base).second) {
            appendGroup(text, kProxyGroup, entry.base);
        }
    }
}

} // namespace fernwick
