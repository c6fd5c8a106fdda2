// Reads any bytes as a catalogue, a record to a line, and writes the engine's configuration for it. Whatever
// the user's texts are (a line feed aside, which would be a line of its own), each line must be of a known
// form, each rule must go where a group stands, and proxies must have names of their own.
//
//     T name|port          a live tunnel; down without a number for a port
//     P name|address|n     a proxy, behind the tunnel of that number when there is one
//     R action|n|hosts|ports|applications     a rule for the proxy or tunnel of that number; lists with ";"
#include "routing/ClashConfig.h"
#include "routing/ClashNames.h"
#include "support/Integer.h"
#include "support/Pieces.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace {

using namespace fernwick;

void require(bool holds, std::string_view what, std::string_view line = {}) {
    if (!holds) {
        std::cerr << what << ": " << line << '\n';
        std::abort();
    }
}

class StoppedClock final : public platform::Clock {
public:
    [[nodiscard]] support::Date now() const override { return {}; }
    [[nodiscard]] std::chrono::nanoseconds uptime() const override { return {}; }
    void sleep(std::chrono::milliseconds /*duration*/) const override {}
};

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
support::Uuid numbered(std::uint8_t kind, std::size_t number) {
    support::Uuid id;
    id.bytes[0] = kind;
    id.bytes[1] = static_cast<std::uint8_t>(number >> 8U);
    id.bytes[2] = static_cast<std::uint8_t>(number);
    return id;
}

void addTunnel(Catalogue& catalogue, std::string_view line) {
    const auto [name, port] = fieldsOf<2>(line);
    Tunnel tunnel;
    tunnel.id = numbered(1, catalogue.tunnels.size());
    tunnel.name = name;
    // A tunnel is live once ssh listens, so that its port is a number.
    catalogue.ports[tunnel.id] = support::parseInteger<std::uint16_t>(port) ? port : "";
    catalogue.tunnels.push_back(std::move(tunnel));
}

void addProxy(Catalogue& catalogue, std::string_view line) {
    const auto [name, address, tunnel] = fieldsOf<3>(line);
    ProxyConfig proxy;
    proxy.id = numbered(2, catalogue.proxies.size());
    proxy.name = name;
    proxy.address = address;
    proxy.tunnelID = idAt(catalogue.tunnels, tunnel);
    catalogue.proxies.push_back(std::move(proxy));
}

void addRule(Catalogue& catalogue, std::string_view line) {
    const auto [action, number, hosts, ports, applications] = fieldsOf<5>(line);
    AppRule rule;
    rule.action = support::fromRawText<RuleAction>(action).value_or(RuleAction::direct);
    rule.proxyID = idAt(catalogue.proxies, number);
    rule.tunnelID = idAt(catalogue.tunnels, number);
    rule.setTargetPorts(applications);
    rule.applications = rule.targetPorts;
    rule.setTargetHosts(hosts);
    rule.setTargetPorts(ports);
    catalogue.rules.push_back(std::move(rule));
}

Catalogue catalogueOf(std::string_view bytes) {
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
        }
        return true;
    });
    return catalogue;
}

// The lines below a key at the left margin.
std::vector<std::string_view> section(std::string_view text, std::string_view key) {
    std::vector<std::string_view> lines;
    bool inside = false;
    support::forEachPiece(text, '\n', [&](std::string_view line) {
        if (line.front() != ' ') {
            inside = line == key;
        } else if (inside) {
            lines.push_back(line);
        }
        return true;
    });
    return lines;
}

std::string targetOf(const std::set<std::string, std::less<>>& targets, std::string_view line) {
    constexpr std::string_view kOption = ",no-resolve";
    for (const auto& target : targets) {
        if (line.ends_with("," + target) || line.ends_with("," + target + std::string(kOption))) {
            return target;
        }
    }
    return {};
}

void checkRules(const Catalogue& catalogue, std::string_view text) {
    std::set<std::string, std::less<>> targets{"DIRECT", "REJECT"};
    for (const auto line : section(text, "proxy-groups:")) {
        if (constexpr std::string_view kName = "  - name: \""; line.starts_with(kName)) {
            targets.emplace(line.substr(kName.size(), line.size() - kName.size() - 1));
        }
    }
    for (const auto& proxy : catalogue.proxies) {
        if (proxy.tunnelID &&
            catalogue.ports.at(*proxy.tunnelID).empty()) { // may share a name with one that is up
            targets.insert("GRP_" + sanitizeName(proxy.effectiveName()));
        }
    }
    const auto lines = section(text, "rules:");
    for (const auto line : lines) {
        require(line.starts_with("  - "), "no rule", line);
        require(!targetOf(targets, line).empty(), "a rule that leads nowhere", line);
    }
    std::size_t elements = 0;
    for (const auto& rule : catalogue.rules) {
        elements += rule.targetHosts.size() + rule.targetPorts.size() + rule.applications.size();
    }
    constexpr std::size_t kLongestCover = 62;
    require(lines.size() <= 12 + elements * kLongestCover, "more rules than the catalogue can have");
}

void checkProxies(std::string_view text) {
    std::set<std::string_view> names;
    for (const auto line : section(text, "proxies:")) {
        if (line.starts_with("  - name: ")) {
            require(std::ranges::count(line, '"') == 2, "a name that ends its quotes", line);
            require(names.insert(line.substr(10)).second, "a name that stands twice", line);
        }
    }
    for (const auto line : section(text, "proxy-groups:")) {
        if (line.starts_with("      - \"")) {
            require(names.contains(line.substr(8)), "a member that is no proxy", line);
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string bytes(data, data + size);
    const auto catalogue = catalogueOf(bytes);
    const auto text = generateClashConfig(catalogue.tunnels, catalogue.ports, catalogue.proxies,
                                          catalogue.rules, StoppedClock());
    require(text.ends_with("\n  - MATCH,DIRECT\n"), "no end");
    checkProxies(text);
    checkRules(catalogue, text);
    return 0;
}
