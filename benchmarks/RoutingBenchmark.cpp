// The engine's configuration and the proxy auto-config script, each beside appending its finished lines to a
// string. Goals for 1,000 tunnels, 1,000 proxies and 10,000 rules of 10 hosts each: at most 3 times as long as
// the appending; from a tenth to ten times that size linear, as far as the appending is, for the configuration
// also when every name is the same.
//
// Memory that was freed is kept, as the C library does for small blocks and not for large ones: the kernel's
// price for fresh pages would hide what is measured, and fall on one size and not on another.
#include "SampleCatalogue.h"
#include "routing/ClashConfig.h"
#include "routing/PACBuilder.h"

#include <benchmark/benchmark.h>

#include <limits>
#include <malloc.h>
#include <string>
#include <vector>

namespace {

using namespace fernwick;

constexpr std::size_t kRulesPerProxy = 10;
constexpr std::size_t kHosts = 10;

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

    [[nodiscard]] std::string configuration() const {
        return generateClashConfig(tunnels, ports, proxies, rules, StoppedClock());
    }

    [[nodiscard]] std::string script() const { return buildPAC(rules, proxies, ports); }
};

// A host of one of the forms that people use, mostly domains. None has a hyphen: the script takes it for a
// range, whose lines are so long that appending them is all that would be measured.
std::string hostFor(std::size_t number) {
    const auto text = std::to_string(number);
    switch (number % kHosts) {
    case 0:
        return "*.team" + text + ".example.com";
    case 1:
        return "10." + std::to_string(number % 256) + ".0.0/16";
    case 2:
        return "10.1.2." + std::to_string(number % 256);
    case 3:
        return "*ads" + text + "*";
    default:
        return "host" + text + ".internal.example.com";
    }
}

AppRule ruleFor(const Catalogue& catalogue, std::size_t number) {
    auto rule = AppRule::create();
    const auto place = number % catalogue.proxies.size();
    rule.action = number % 2 == 0 ? RuleAction::tunnel : RuleAction::proxy;
    rule.tunnelID = catalogue.tunnels[place].id;
    rule.proxyID = catalogue.proxies[place].id;
    for (std::size_t host = 0; host < kHosts; ++host) {
        rule.targetHosts.push_back(hostFor(number * kHosts + host));
    }
    return rule;
}

// So many tunnels and proxies, half of which are behind a tunnel, and ten times as many rules.
Catalogue catalogueOf(std::size_t count, bool sameNames) {
    Catalogue catalogue;
    catalogue.tunnels = benchmarks::sampleTunnels(count, "Production database");
    for (std::size_t number = 0; number < count; ++number) {
        auto& tunnel = catalogue.tunnels[number];
        auto proxy = ProxyConfig::create();
        proxy.name = "Exit " + std::to_string(number);
        if (number % 2 == 0) {
            proxy.tunnelID = tunnel.id;
        }
        if (sameNames) {
            tunnel.name = tunnel.localPort = proxy.name = "A";
        }
        catalogue.ports[tunnel.id] = tunnel.localPort;
        catalogue.proxies.push_back(std::move(proxy));
    }
    for (std::size_t number = 0; number < count * kRulesPerProxy; ++number) {
        catalogue.rules.push_back(ruleFor(catalogue, number));
    }
    return catalogue;
}

std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines;
    for (std::size_t at = 0; at < text.size();) {
        const auto end = text.find('\n', at) + 1;
        lines.push_back(text.substr(at, end - at));
        at = end;
    }
    return lines;
}

using Text = std::string (Catalogue::*)() const;

void generate(benchmark::State& state, Text text, bool sameNames) {
    const auto catalogue = catalogueOf(static_cast<std::size_t>(state.range(0)), sameNames);
    std::size_t bytes = 0;
    for ([[maybe_unused]] auto _ : state) {
        const auto generated = (catalogue.*text)();
        bytes = generated.size();
        benchmark::DoNotOptimize(generated.data());
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytes));
}

void append(benchmark::State& state, Text text) {
    const auto lines = linesOf((catalogueOf(static_cast<std::size_t>(state.range(0)), false).*text)() + "\n");
    std::size_t bytes = 0;
    for ([[maybe_unused]] auto _ : state) {
        std::string appended;
        for (const auto& line : lines) {
            appended += line;
        }
        bytes = appended.size();
        benchmark::DoNotOptimize(appended.data());
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytes));
}

void clashConfig(benchmark::State& state) {
    generate(state, &Catalogue::configuration, false);
}

void clashConfigOfOneName(benchmark::State& state) {
    generate(state, &Catalogue::configuration, true);
}

void appendLines(benchmark::State& state) {
    append(state, &Catalogue::configuration);
}

void pac(benchmark::State& state) {
    generate(state, &Catalogue::script, false);
}

void appendPacLines(benchmark::State& state) {
    append(state, &Catalogue::script);
}

void sizes(benchmark::internal::Benchmark* cases) {
    cases->RangeMultiplier(10)->Range(100, 10000)->Unit(benchmark::kMillisecond);
}

BENCHMARK(clashConfig)->Apply(sizes);
BENCHMARK(clashConfigOfOneName)->Apply(sizes);
BENCHMARK(appendLines)->Apply(sizes);
BENCHMARK(pac)->Apply(sizes);
BENCHMARK(appendPacLines)->Apply(sizes);

} // namespace

int main(int argc, char** argv) {
    mallopt(M_MMAP_THRESHOLD, std::numeric_limits<int>::max());
    mallopt(M_TRIM_THRESHOLD, std::numeric_limits<int>::max());
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
