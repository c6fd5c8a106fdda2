// Everything that the engine's configuration is made from, and the text that comes of it by sections.
#pragma once

#include "routing/ClashConfig.h"
#include "support/FakeClock.h"
#include "support/FakeDispatch.h"

#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

namespace fernwick {

using Lines = std::vector<std::string>;

inline Lines linesOf(const std::string& text) {
    Lines lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

inline std::string goldenText(const std::string& name) {
    std::ifstream file(FERNWICK_GOLDEN "/" + name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

struct ClashWorld {
    fakes::FakeDispatch dispatch;
    fakes::FakeClock clock{dispatch};
    std::vector<Tunnel> tunnels;
    TunnelPortMap ports;
    std::vector<ProxyConfig> proxies;
    std::vector<AppRule> rules;

    ClashWorld() = default;
    // The same catalogue, with a clock that starts anew.
    ClashWorld(const ClashWorld& other)
        : tunnels(other.tunnels), ports(other.ports), proxies(other.proxies), rules(other.rules) {}
    ClashWorld& operator=(const ClashWorld&) = delete;
    ~ClashWorld() = default;

    // A tunnel that is up on that port; without one it is down.
    support::Uuid addTunnel(std::string name, const std::string& port = "1080") {
        auto& tunnel = tunnels.emplace_back();
        tunnel.id = support::Uuid::random();
        tunnel.name = std::move(name);
        if (!port.empty()) {
            ports[tunnel.id] = port;
        }
        return tunnel.id;
    }

    support::Uuid addProxy(std::string name, std::optional<support::Uuid> tunnelID = std::nullopt) {
        proxies.push_back(ProxyConfig::create());
        proxies.back().name = std::move(name);
        proxies.back().tunnelID = tunnelID;
        return proxies.back().id;
    }

    AppRule& addRule(RuleAction action, std::optional<support::Uuid> id = std::nullopt) {
        rules.push_back(AppRule::create());
        rules.back().action = action;
        (action == RuleAction::tunnel ? rules.back().tunnelID : rules.back().proxyID) = id;
        return rules.back();
    }

    [[nodiscard]] std::string text() const {
        return generateClashConfig(tunnels, ports, proxies, rules, clock);
    }

    // The lines below a key at the left margin.
    [[nodiscard]] Lines section(const std::string& key) const {
        Lines found;
        bool inside = false;
        for (const auto& line : linesOf(text())) {
            if (line.empty() || line.front() != ' ') {
                inside = line == key + ":";
            } else if (inside) {
                found.push_back(line);
            }
        }
        return found;
    }

    // The lines that the rules add between those that always stand there.
    [[nodiscard]] Lines ruleLines() const {
        constexpr std::ptrdiff_t kBefore = 5;
        constexpr std::ptrdiff_t kBehind = 7;
        const auto all = section("rules");
        return {all.begin() + kBefore, all.end() - kBehind};
    }

    // The lines of one kind, by how they begin and without that.
    [[nodiscard]] Lines values(const std::string& key, const std::string& beginning) const {
        Lines found;
        for (const auto& line : section(key)) {
            if (line.starts_with(beginning)) {
                found.push_back(line.substr(beginning.size()));
            }
        }
        return found;
    }
};

} // namespace fernwick
