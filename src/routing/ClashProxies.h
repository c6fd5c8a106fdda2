// The proxies of the engine's configuration and the groups that its rules name: one for each live tunnel, each
// proxy with an address of its own, and each proxy behind a live tunnel.
// Threads: any, one at a time.
#pragma once

#include "catalogue/Tunnel.h"
#include "routing/AppRule.h"
#include "routing/ClashNames.h"
#include "routing/ProxyConfig.h"
#include "tunnel/RoutingLayer.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace fernwick {

class ClashProxies {
public:
    // Gives each tunnel and proxy its name. The lists and the map outlive the object.
    ClashProxies(const std::vector<Tunnel>& tunnels, const TunnelPortMap& tunnelPorts,
                 const std::vector<ProxyConfig>& proxies);

    // Whether any of the tunnels is live.
    [[nodiscard]] bool hasLiveTunnel() const { return !tunnelNames_.empty(); }

    // About how many bytes both of the next two add.
    [[nodiscard]] std::size_t expectedSize() const;

    // Appends what stands below "proxies:", and below "proxy-groups:".
    void appendProxies(std::string& text) const;
    void appendGroups(std::string& text) const;

    // Where the engine sends what the rule matches; absent when the rule's proxy or tunnel is not there or not
    // live. Good as long as the object.
    [[nodiscard]] std::optional<std::string_view> ruleTarget(const AppRule& rule) const;

private:
    // A proxy as it is written. One behind a tunnel has the tunnel's port, and none when it is not written.
    struct Entry {
        const ProxyConfig* proxy;
        std::string base;    // its sanitized name, by which groups refer to it
        std::string emitted; // the name under which it is written
        const std::string* tunnelPort = nullptr;
    };

    void nameTunnels();
    void nameProxies(const std::vector<ProxyConfig>& proxies);
    void findTargets(const std::vector<ProxyConfig>& proxies);
    [[nodiscard]] const std::string* livePort(const support::Uuid& tunnelID) const;
    [[nodiscard]] std::vector<std::string_view> groupMembers() const;

    const std::vector<Tunnel>& tunnels_;
    const TunnelPortMap& ports_;
    std::unordered_map<support::Uuid, std::string> tunnelNames_;
    TakenNames emitted_;           // names that stand below "proxies:"
    std::vector<Entry> direct_;    // proxies with an address of their own
    std::vector<Entry> tunnelled_; // the others, each in the order of the list
    std::unordered_map<support::Uuid, std::string> tunnelTargets_;
    std::unordered_map<support::Uuid, std::string> proxyTargets_; // empty text: no target
};

} // namespace fernwick
