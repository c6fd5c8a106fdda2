// Reads any bytes as a catalogue (SampleCatalogue.h) and writes the engine's configuration for it. Whatever
// the user's texts are (a line feed aside, which would be a line of its own), each line must be of a known
// form, each rule must go where a group stands, and proxies must have names of their own.
#include "SampleCatalogue.h"
#include "routing/ClashConfig.h"
#include "routing/ClashNames.h"

#include <algorithm>
#include <cstdint>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace {

using namespace fernwick;
using fuzz::Catalogue;
using fuzz::require;

class StoppedClock final : public platform::Clock {
public:
    [[nodiscard]] support::Date now() const override { return {}; }
    [[nodiscard]] std::chrono::nanoseconds uptime() const override { return {}; }
    void sleep(std::chrono::milliseconds /*duration*/) const override {}
};

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
    const auto catalogue = fuzz::catalogueOf(bytes);
    const auto text = generateClashConfig(catalogue.tunnels, catalogue.ports, catalogue.proxies,
                                          catalogue.rules, StoppedClock());
    require(text.ends_with("\n  - MATCH,DIRECT\n"), "no end");
    checkProxies(text);
    checkRules(catalogue, text);
    return 0;
}
