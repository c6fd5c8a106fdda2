// What the main thread is held up for by an export, a backup and a restore of 10,000 tunnels, 1,000 proxies and
// 10,000 rules of 10 hosts, on real files. A restore includes the proxies and rules in memory, which follow it.
// Goals: 100 ms, 100 ms and 150 ms.
#include "SampleCatalogue.h"
#include "platform/posix/PosixFileSystem.h"
#include "portability/SyncManager.h"
#include "support/FakeClock.h"
#include "support/FakeCloudStore.h"
#include "support/FakeDispatch.h"
#include "support/FakeHostEnvironment.h"
#include "support/FakePlatform.h"
#include "support/FakeUserDefaults.h"
#include "support/RecordWriter.h"
#include "support/TemporaryFolder.h"

#include <benchmark/benchmark.h>

#include <string>
#include <vector>

namespace {

using namespace fernwick;

constexpr std::size_t kTunnels = 10000;
constexpr std::size_t kProxies = 1000;
constexpr std::size_t kRules = 10000;
constexpr std::size_t kHosts = 10;

void fill(fakes::FakeUserDefaults& defaults) {
    const auto tunnels = benchmarks::sampleTunnels(kTunnels, "Production database");
    std::vector<ProxyConfig> proxies;
    for (std::size_t number = 0; number < kProxies; ++number) {
        auto& proxy = proxies.emplace_back(ProxyConfig::create());
        proxy.name = "Exit " + std::to_string(number);
        proxy.tunnelID = tunnels[number].id;
    }
    std::vector<AppRule> rules;
    for (std::size_t number = 0; number < kRules; ++number) {
        auto& rule = rules.emplace_back(AppRule::create());
        rule.proxyID = proxies[number % kProxies].id;
        for (std::size_t host = 0; host < kHosts; ++host) {
            rule.targetHosts.push_back("host" + std::to_string(number * kHosts + host) +
                                       ".internal.example.com");
        }
    }
    defaults.setData(listAt(CatalogueIndex::tunnels).defaultsKey, support::encodeList(tunnels).value());
    defaults.setData(listAt(CatalogueIndex::proxies).defaultsKey, support::encodeList(proxies).value());
    defaults.setData(listAt(CatalogueIndex::rules).defaultsKey, support::encodeList(rules).value());
}

struct Bench {
    Bench() { fill(defaults); } // the rules in memory stay empty

    void exportNow() {
        manager.exportAll(completion());
        dialogs.answer(path);
    }

    [[nodiscard]] SyncCompletion completion() {
        return [this](bool success, const std::string&) { succeeded = success; };
    }

    fakes::FakeUserDefaults defaults;
    fakes::TemporaryFolder folder;
    std::string path = folder / "catalogue.backup";
    fakes::FakeDispatch dispatch;
    fakes::FakeClock clock{dispatch};
    platform::PosixFileSystem files;
    fakes::FakeDialogs dialogs;
    fakes::FakeCloudStore cloud{dispatch};
    fakes::FakeHostEnvironment host;
    support::NotificationCenter notifications;
    ProxyRuleStore rules{defaults, dispatch};
    SyncManager manager{{defaults, dispatch, clock, files, dialogs, cloud, notifications, host, rules}};
    bool succeeded = false; // the last operation
};

void checkSuccess(benchmark::State& state, const Bench& bench) {
    if (!bench.succeeded) {
        state.SkipWithError("it failed");
    }
}

void exportAll(benchmark::State& state) {
    Bench bench;
    for ([[maybe_unused]] auto _ : state) {
        bench.exportNow();
    }
    checkSuccess(state, bench);
}

void runBackup(benchmark::State& state) {
    Bench bench;
    bench.manager.settings().setBackupPath(bench.folder.path());
    for ([[maybe_unused]] auto _ : state) {
        bench.manager.runBackup(bench.completion());
    }
    checkSuccess(state, bench);
}

void restoreBackup(benchmark::State& state) {
    Bench bench;
    bench.exportNow();
    bench.succeeded = false;
    for ([[maybe_unused]] auto _ : state) {
        bench.manager.restoreBackup(bench.path, bench.completion());
        bench.dispatch.advance(std::chrono::milliseconds(100));
    }
    checkSuccess(state, bench);
    if (bench.rules.rules().size() != kRules) {
        state.SkipWithError("the rules did not follow");
    }
}

BENCHMARK(exportAll)->Unit(benchmark::kMillisecond);
BENCHMARK(runBackup)->Unit(benchmark::kMillisecond);
BENCHMARK(restoreBackup)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
