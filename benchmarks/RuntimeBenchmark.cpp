// How the whole application behaves under load, with real children and its window open: two hundred tunnels at
// once, a child that floods its standard error, and a keystroke's save of ten thousand tunnels, on a disk that
// works and on one that is stuck. Prints one JSON object.
#include "Application.h"
#include "Heartbeat.h"
#include "SampleCatalogue.h"
#include "catalogue/StoredList.h"
#include "platform/posix/PosixProcesses.h"
#include "support/RecordWriter.h"
#include "support/StuckDisk.h"
#include "support/WaitUntil.h"

#include <QAbstractButton>
#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QListView>
#include <QTemporaryDir>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <functional>

namespace fernwick {
namespace {

constexpr int kTunnels = 200;
constexpr std::string_view kFlood = "seq -f 'line %06g: what a talkative child says, about ninety characters "
                                    "of it, over and over again' 100000 >&2; "
                                    "exec sleep 60";

// Children that run a stand-in in place of ssh.
class StandInProcesses final : public platform::Processes {
public:
    explicit StandInProcesses(platform::Processes& real) : real_(real) {}

    [[nodiscard]] std::shared_ptr<platform::ChildProcess> makeChild() override {
        return std::make_shared<StandIn>(real_.makeChild(), script);
    }
    void sendSignal(int pid, int signal) override { real_.sendSignal(pid, signal); }
    void suspend(int pid) override { real_.suspend(pid); }

    std::string script = "exec sleep 60";

private:
    class StandIn final : public platform::ChildProcess {
    public:
        StandIn(std::shared_ptr<platform::ChildProcess> child, std::string script)
            : child_(std::move(child)), script_(std::move(script)) {}
        [[nodiscard]] std::expected<void, platform::LaunchError>
        launch(platform::ProcessRequest request, platform::ProcessHandlers handlers) override {
            request.executable = "/bin/sh";
            request.arguments = {"-c", script_};
            return child_->launch(std::move(request), std::move(handlers));
        }
        [[nodiscard]] int pid() const override { return child_->pid(); }
        [[nodiscard]] bool isRunning() const override { return child_->isRunning(); }
        void terminate() override { child_->terminate(); }

    private:
        std::shared_ptr<platform::ChildProcess> child_;
        std::string script_;
    };

    platform::Processes& real_;
};

struct Place : benchmarks::Machine {
    platform::ChildLauncher launcher;
    platform::PosixProcesses realProcesses{dispatch, launcher};
    StandInProcesses processes{realProcesses};
    NoRouting routing;
};

struct World : Place, benchmarks::Application {
    World(Theme& theme, const std::vector<Tunnel>& added)
        : Application(theme, *this, processes, routing, added) {}
};

// Runs the event loop until the condition holds; the seconds that took, or -1 when it took more than twenty.
double runUntil(const std::function<bool()>& holds) {
    QElapsedTimer elapsed;
    elapsed.start();
    while (!holds()) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents | QEventLoop::AllEvents);
        if (elapsed.elapsed() > 20000) {
            return -1;
        }
    }
    return static_cast<double>(elapsed.nsecsElapsed()) / 1e9;
}

long residentKibibytes() {
    QFile status(QStringLiteral("/proc/self/status"));
    if (status.open(QIODevice::ReadOnly)) {
        for (const auto& line : status.readAll().split('\n')) {
            if (line.startsWith("VmRSS:")) {
                return line.mid(6).trimmed().split(' ').front().toLong();
            }
        }
    }
    return 0;
}

void connectAllAtOnce(Theme& theme) {
    World world(theme, benchmarks::sampleTunnels(kTunnels, "Tunnel"));
    const Heartbeat heartbeat;
    for (const auto tunnels = world.store.tunnels(); const auto& tunnel : tunnels) {
        world.tunnels.connect(tunnel, world.store);
    }
    const double took = runUntil([&] {
        return std::ranges::all_of(world.store.tunnels(), [&](const Tunnel& tunnel) {
            return world.tunnels.status(tunnel.id) == TunnelStatus::connected();
        });
    });
    std::printf(R"("connectAll":{"seconds":%.3f,"longestTurn":%.1f},)", took, heartbeat.longest());
    world.tunnels.killAllOnQuit();
}

// Selects the last tunnel and turns to its log.
void showLog(World& world) {
    auto* list = world.window.findChild<QListView*>(QStringLiteral("tunnelList"));
    list->setCurrentIndex(list->model()->index(list->model()->rowCount() - 1, 0));
    runUntil([&] { return world.window.findChild<QWidget*>(QStringLiteral("logsTabButton")) != nullptr; });
    world.window.findChild<QAbstractButton*>(QStringLiteral("logsTabButton"))->click();
    runUntil([&] {
        const auto* log = world.window.findChild<QWidget*>(QStringLiteral("logsTab"));
        return log != nullptr && log->isVisible();
    });
}

void floodOneLog(Theme& theme) {
    World world(theme, benchmarks::sampleTunnels(1, "Tunnel"));
    world.processes.script = kFlood;
    const auto tunnel = world.store.tunnels().back();
    runUntil([&] { return world.window.isVisible(); });
    showLog(world);
    const long before = residentKibibytes();
    const Heartbeat heartbeat;
    world.tunnels.connect(tunnel, world.store);
    const double took = runUntil([&] {
        const auto& lines = world.tunnels.logs().lines(tunnel.id);
        return std::ranges::any_of(lines,
                                   [](const auto& line) { return line.message.starts_with("line 100000"); });
    });
    std::printf(R"("flood":{"seconds":%.3f,"longestTurn":%.1f,"lines":%zu,"grownKibibytes":%ld},)", took,
                heartbeat.longest(), world.tunnels.logs().lines(tunnel.id).size(),
                residentKibibytes() - before);
    world.tunnels.killAllOnQuit();
}

// Shows ten thousand tunnels, which are on disk when it returns.
void fill(World& world) {
    world.defaults->set(TunnelStore::kDefaultsKey,
                        {platform::Data(*support::encodeList(benchmarks::sampleTunnels(10000, "Tunnel")))});
    world.store.reload();
    QCoreApplication::processEvents();
    world.defaults->synchronize();
    // The next change is then written at once.
    QEventLoop loop;
    QTimer::singleShot(2 * platform::FileUserDefaults::kPause, &loop, &QEventLoop::quit);
    loop.exec();
}

// Types into the name of one tunnel; the milliseconds that each keystroke held the main thread, the shortest
// first.
std::vector<double> type(World& world, int keystrokes) {
    std::vector<double> turns;
    for (int key = 0; key < keystrokes; ++key) {
        auto tunnel = world.store.tunnels()[5000];
        tunnel.name += "x";
        QElapsedTimer elapsed;
        elapsed.start();
        world.store.update(tunnel);
        QCoreApplication::processEvents();
        turns.push_back(static_cast<double>(elapsed.nsecsElapsed()) / 1e6);
    }
    std::ranges::sort(turns);
    return turns;
}

void typeIntoLargeCatalogue(Theme& theme) {
    constexpr int kKeystrokes = 30;
    World world(theme, {});
    fill(world);
    const auto turns = type(world, kKeystrokes);
    std::printf(R"("keystroke":{"median":%.2f,"longest":%.2f},)", turns[kKeystrokes / 2], turns.back());
}

// The first keystroke's write gets stuck, and all the others are typed before the disk works again.
void typeWithStuckDisk(Theme& theme) {
    constexpr int kKeystrokes = 20;
    World world(theme, {});
    fill(world);
    fakes::StuckDisk disk;
    type(world, 1);
    const bool stuck = fakes::waitUntil([&] { return disk.holdsSomeone(); });
    const long before = residentKibibytes();
    const auto turns = type(world, kKeystrokes);
    const long grown = residentKibibytes() - before;
    const bool stillStuck = stuck && disk.holdsSomeone();
    disk.release();
    world.defaults->synchronize();
    const auto stored =
        readStoredList<Tunnel>(*world.provider.open(benchmarks::kDomain), TunnelStore::kDefaultsKey);
    const bool complete = stillStuck && stored == world.store.tunnels();
    constexpr int kSyncsOfAWrite = 2; // of the file and of its folder
    std::printf(R"("stuckDisk":{"median":%.2f,"longest":%.2f,"grownKibibytes":%ld,"writes":%d,"complete":%s})",
                turns[kKeystrokes / 2], turns.back(), grown, disk.syncs() / kSyncsOfAWrite,
                complete ? "true" : "false");
}

} // namespace
} // namespace fernwick

int main(int argc, char** argv) {
    const QTemporaryDir home;
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("XDG_CONFIG_HOME", home.path().toLocal8Bit());
    qputenv("XDG_DATA_HOME", home.path().toLocal8Bit());
    QApplication application(argc, argv);
    fernwick::Theme theme(application);
    std::printf("{");
    fernwick::connectAllAtOnce(theme);
    fernwick::floodOneLog(theme);
    fernwick::typeIntoLargeCatalogue(theme);
    fernwick::typeWithStuckDisk(theme);
    std::printf("}\n");
    return 0;
}
