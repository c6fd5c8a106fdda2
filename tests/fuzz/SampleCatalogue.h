// A catalogue read from any bytes, a record to a line, for the fuzzers of the routing texts.
//
//     T name|port          a live tunnel; down without a number for a port
//     P name|address|n|protocol     a proxy, behind the tunnel of that number when there is one
//     R action|n|hosts|ports|applications|name     a rule for the proxy or tunnel of that number; lists with
//     ";" r ...                the same, switched off
#pragma once

#include "catalogue/Tunnel.h"
#include "routing/AppRule.h"
#include "routing/ProxyConfig.h"
#include "support/Integer.h"
#include "support/Pieces.h"
#include "tunnel/RoutingLayer.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace fernwick::fuzz {

inline void require(bool holds, std::string_view what, std::string_view line = {}) {
    if (!holds) {
        std::cerr << what << ": " << line << '\n';
        std::abort();
    }
}

struct Catalogue {
    std::vector<Tunnel> tunnels;
    TunnelPortMap ports;
    std::vector<ProxyConfig> proxies;
    std::vector<AppRule> rules;
};

// The fields between the bars, as many as asked for; what is missing is empty.
template <std::size_t Count>
std::array<std::string, Count> fieldsOf(std::string_view line) {
    std::array<std::string, Count> fields;
    for (auto& field : fields) {
        const auto end = std::min(line.find('|'), line.size());
        field = line.substr(0, end);
        line.remove_prefix(std::min(end + 1, line.size()));
    }
    return fields;
}

// The id of the record of that number, if there is one.
template <class R>
std::optional<support::Uuid> idAt(const std::vector<R>& list, std::string_view number) {
    const auto at = support::parseInteger<std::size_t>(number);
    return at && *at < list.size() ? std::optional(list[*at].id) : std::nullopt;
}

// Ids that are told apart by their number, so that a run is the same each time.
inline support::Uuid numbered(std::uint8_t kind, std::size_t number) {
    support::Uuid id;
    id.bytes[0] = kind;
    id.bytes[1] = static_cast<std::uint8_t>(number >> 8U);
    id.bytes[2] = static_cast<std::uint8_t>(number);
    return id;
}

inline void addTunnel(Catalogue& catalogue, std::string_view line) {
    const auto [name, port] = fieldsOf<2>(line);
    Tunnel tunnel;
    tunnel.id = numbered(1, catalogue.tunnels.size());
    tunnel.name = name;
    // A tunnel is live once ssh listens, so that its port is a number.
    catalogue.ports[tunnel.id] = support::parseInteger<std::uint16_t>(port) ? port : "";
    catalogue.tunnels.push_back(std::move(tunnel));
}

inline void addProxy(Catalogue& catalogue, std::string_view line) {
    const auto [name, address, tunnel, protocol] = fieldsOf<4>(line);
    ProxyConfig proxy;
    proxy.id = numbered(2, catalogue.proxies.size());
    proxy.name = name;
    proxy.address = address;
    proxy.proto = support::fromRawText<ProxyProtocol>(protocol).value_or(ProxyProtocol::socks5);
    proxy.tunnelID = idAt(catalogue.tunnels, tunnel);
    catalogue.proxies.push_back(std::move(proxy));
}

inline void addRule(Catalogue& catalogue, std::string_view line) {
    const auto [action, number, hosts, ports, applications, name] = fieldsOf<6>(line);
    AppRule rule;
    rule.name = name;
    rule.action = support::fromRawText<RuleAction>(action).value_or(RuleAction::direct);
    rule.proxyID = idAt(catalogue.proxies, number);
    rule.tunnelID = idAt(catalogue.tunnels, number);
    rule.setTargetPorts(applications);
    rule.applications = rule.targetPorts;
    rule.setTargetHosts(hosts);
    rule.setTargetPorts(ports);
    catalogue.rules.push_back(std::move(rule));
}

inline Catalogue catalogueOf(std::string_view bytes) {
    Catalogue catalogue;
    support::forEachPiece(bytes, '\n', [&](std::string_view line) {
        const auto rest = line.substr(std::min<std::size_t>(2, line.size()));
        switch (line.front()) {
        case 'T':
            addTunnel(catalogue, rest);
            break;
        case 'P':
            addProxy(catalogue, rest);
            break;
        default:
            addRule(catalogue, rest);
            catalogue.rules.back().isEnabled = line.front() != 'r';
        }
        return true;
    });
    return catalogue;
}

} // namespace fernwick::fuzz
