// Catalogues made at random, the same for the same seed, with names and ports that often collide.
#pragma once

#include "routing/ClashWorld.h"

#include <array>
#include <cstddef>
#include <random>
#include <string>
#include <vector>

namespace fernwick {

class RandomCatalogue {
public:
    explicit RandomCatalogue(unsigned seed) : random_(seed) {}

    // Whether this time, at those odds out of a hundred.
    bool chance(std::size_t percent) { return below(100) < percent; }
    std::size_t below(std::size_t limit) { return random_() % limit; }

    template <class T, std::size_t Count>
    const T& oneOf(const std::array<T, Count>& choices) {
        return choices[below(Count)];
    }

    std::string address() {
        std::string text;
        for (int piece = 0; piece < 4; ++piece) {
            text += (piece > 0 ? "." : "") + std::to_string(below(256));
        }
        return text;
    }

    // A host, port or application of any form that the editor lets through.
    std::string element() {
        static const std::array<std::string, 24> kForms{"10.1.2.3",
                                                        "192.168.0.0/16",
                                                        "172.20.0.1-172.20.0.9",
                                                        "10",
                                                        "192.168",
                                                        "172.200.0.1",
                                                        "10/8",
                                                        "*.a.example",
                                                        "*",
                                                        "ads*.x",
                                                        "a-b.example",
                                                        "1-2.example",
                                                        "7-Zip",
                                                        "Safari",
                                                        "com.apple.Safari",
                                                        "a,b",
                                                        "80",
                                                        "8000-9000",
                                                        "",
                                                        " ",
                                                        " 10.0.0.1\t",
                                                        "1.2.3.x.4",
                                                        ".10.0.0.1",
                                                        "10.0.0.0/8-10.1.0.0"};
        switch (below(8)) {
        case 0:
            return address();
        case 1:
            return address() + "-" + address();
        case 2:
            return address() + "/" + std::to_string(below(40));
        default:
            return oneOf(kForms);
        }
    }

    std::vector<std::string> elements() {
        std::vector<std::string> list(below(4));
        for (auto& each : list) {
            each = element();
        }
        return list;
    }

    std::string name() {
        static const std::array<std::string, 10> kNames{"A",   "B",  "A-2", "A-1080", "A-1080-2",
                                                        " A ", "A:", "A\"", "GRP_A",  ""};
        return oneOf(kNames);
    }

    // Fills the world with up to that many tunnels, proxies and rules each.
    void fill(ClashWorld& world, std::size_t limit) {
        static const std::array<std::string, 4> kPorts{"1080", "1081", "1082", ""};
        for (auto count = below(limit); count > 0; --count) {
            const auto id = world.addTunnel(name(), oneOf(kPorts));
            if (chance(5)) {
                world.ports[id] = "";
            }
        }
        for (auto count = below(limit); count > 0; --count) {
            addProxy(world);
        }
        for (auto count = below(limit); count > 0; --count) {
            addRule(world);
        }
    }

    void addProxy(ClashWorld& world) {
        world.addProxy(name(), chance(50) ? someTunnel(world) : std::nullopt);
        auto& proxy = world.proxies.back();
        proxy.proto = std::array{ProxyProtocol::socks5, ProxyProtocol::socks4, ProxyProtocol::https}[below(3)];
        proxy.authentication.enabled = chance(30);
        proxy.authentication.username = "user";
        proxy.authentication.password = "name: \"GRP_A\"";
        if (world.proxies.size() > 1 && chance(5)) {
            proxy.id = world.proxies.front().id;
        }
    }

    AppRule& addRule(ClashWorld& world) {
        static constexpr std::array kActions{RuleAction::direct, RuleAction::proxy, RuleAction::block,
                                             RuleAction::tunnel};
        auto& rule = world.addRule(oneOf(kActions));
        rule.isEnabled = chance(85);
        rule.tunnelID = someTunnel(world);
        if (!world.proxies.empty() && chance(90)) {
            rule.proxyID = world.proxies[below(world.proxies.size())].id;
        }
        rule.targetHosts = elements();
        rule.targetPorts = elements();
        rule.applications = elements();
        return rule;
    }

private:
    std::optional<support::Uuid> someTunnel(const ClashWorld& world) {
        if (world.tunnels.empty() || chance(10)) {
            return support::Uuid::random();
        }
        return world.tunnels[below(world.tunnels.size())].id;
    }

    std::mt19937 random_;
};

} // namespace fernwick
