// What the move from the predecessor costs the start: when it was done before, which is nearly always, and when
// it is made, on real files: so many tunnels, and as many files of 4 KB in the support folder. Goal for the
// former: 1 ms, the reading of the preferences left out, which every start pays.
#include "SampleCatalogue.h"
#include "platform/posix/FileUserDefaults.h"
#include "platform/posix/PosixFileItems.h"
#include "platform/posix/PosixFileSystem.h"
#include "platform/posix/PropertyListFile.h"
#include "portability/MigrationManager.h"
#include "support/FakeDispatch.h"
#include "support/FakeHostEnvironment.h"
#include "support/RecordWriter.h"
#include "support/TemporaryFolder.h"

#include <benchmark/benchmark.h>

#include <filesystem>
#include <string>

namespace {

using namespace fernwick;

constexpr std::size_t kManyTunnels = 10000;

struct Home {
    explicit Home(std::size_t size) {
        std::filesystem::create_directories(folder / "Larkmere/below");
        for (std::size_t number = 0; number < size; ++number) {
            folder.write("Larkmere/below/" + std::to_string(number), std::string(4096, 'x'));
        }
        const auto tunnels = support::encodeList(benchmarks::sampleTunnels(size, "Database")).value();
        platform::PropertyDictionary old;
        old.insert_or_assign("savedTunnelsData_v2", platform::PropertyValue{platform::Data(tunnels)});
        folder.write("quenby.Larkmere.plist", platform::encodePropertyList(old));
    }

    static fakes::FakeHostEnvironment hostIn(const std::string& config) {
        fakes::FakeHostEnvironment host;
        host.config = config;
        return host;
    }

    void forget() const {
        std::filesystem::remove_all(folder / "Fernwick");
        std::filesystem::remove(folder / "com.fernwick.Fernwick.plist");
    }

    void migrate(platform::UserDefaults& defaults) {
        MigrationManager({.defaults = defaults,
                          .provider = provider,
                          .files = files,
                          .items = items,
                          .supportFolders = {folder.path()},
                          .print = [](std::string_view) {}})
            .migrateIfNeeded();
    }

    fakes::TemporaryFolder folder;
    fakes::FakeDispatch dispatch;
    fakes::FakeHostEnvironment host = hostIn(folder.path());
    platform::FileUserDefaultsProvider provider{dispatch, host};
    platform::PosixFileSystem files;
    platform::PosixFileItems items;
};

void migrationDone(benchmark::State& state) {
    Home home(kManyTunnels);
    home.provider.open("com.fernwick.Fernwick")->set(MigrationManager::migrationKey, {true});
    const auto defaults = home.provider.open("com.fernwick.Fernwick");
    for ([[maybe_unused]] auto _ : state) {
        home.migrate(*defaults);
    }
    if (defaults->value("savedTunnelsData_v2")) {
        state.SkipWithError("it was not done");
    }
}

void migrate(benchmark::State& state) {
    const auto size = static_cast<std::size_t>(state.range(0));
    Home home(size);
    for ([[maybe_unused]] auto _ : state) {
        const auto defaults = home.provider.open("com.fernwick.Fernwick");
        home.migrate(*defaults);
        state.PauseTiming();
        if (!std::filesystem::exists(home.folder / ("Fernwick/below/" + std::to_string(size - 1)))) {
            state.SkipWithError("not everything was copied");
            break;
        }
        home.forget();
        state.ResumeTiming();
    }
}

BENCHMARK(migrationDone)->Unit(benchmark::kMicrosecond);
BENCHMARK(migrate)->Arg(100)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
