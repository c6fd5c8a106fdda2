// How the whole application behaves under load, with real children and its window open: two hundred tunnels at
// once, a child that floods its standard error, and a keystroke's save of ten thousand tunnels. Prints one JSON
// object.
#include "SampleCatalogue.h"
#include "catalogue/KeyManager.h"
#include "catalogue/TagManager.h"
#include "platform/posix/FileUserDefaults.h"
#include "platform/posix/PosixHostEnvironment.h"
#include "platform/posix/PosixProcesses.h"
#include "platform/posix/SystemClock.h"
#include "platform/qt/QtDispatch.h"
#include "screens/main/MainWindow.h"
#include "screens/theme/Theme.h"
#include "support/FakeKeychain.h"
#include "support/FakePlatform.h"
#include "support/NotificationCenter.h"
#include "support/RecordWriter.h"
#include "tunnel/TunnelManager.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
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

// The application without its shell.
struct World {
    World(Theme& worn, const std::vector<Tunnel>& added) : theme(worn) {
        for (const auto& tunnel : added) {
            store.add(tunnel);
        }
        window.show();
    }

    Theme& theme;
    platform::SystemClock clock;
    platform::PosixHostEnvironment host;
    platform::QtDispatch dispatch;
    platform::ChildLauncher launcher;
    platform::PosixProcesses realProcesses{dispatch, launcher};
    StandInProcesses processes{realProcesses};
    platform::FileUserDefaultsProvider provider{dispatch, host};
    std::unique_ptr<platform::UserDefaults> defaults = provider.open("com.fernwick.Benchmark");
    support::NotificationCenter notifications;
    NoRouting routing;
    TunnelStore store{*defaults, clock};
    TunnelManager tunnels{{dispatch, clock, processes, host, *defaults, notifications, routing}};
    KeyManager keys{*defaults};
    TagManager tags{*defaults};
    fakes::FakeKeychain secrets;
    KeychainStore keychain{secrets};
    fakes::FakeDialogs dialogs;
    fakes::FakePasteboard pasteboard;
    MainWindow window{{theme,
                       store,
                       tunnels,
                       keys,
                       tags,
                       notifications,
                       dispatch,
                       clock,
                       host,
                       keychain,
                       dialogs,
                       pasteboard,
                       {}}};
};

// The longest time in which the main thread answered nobody, in milliseconds.
class Heartbeat {
public:
    Heartbeat() {
        QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] {
            longest_ = std::max(longest_, static_cast<double>(sinceBeat_.nsecsElapsed()) / 1e6);
            sinceBeat_.restart();
        });
        timer_.setTimerType(Qt::PreciseTimer);
        timer_.start(1);
        sinceBeat_.start();
    }
    [[nodiscard]] double longest() const { return longest_; }

private:
    QTimer timer_;
    QElapsedTimer sinceBeat_;
    double longest_ = 0;
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

void floodOneLog(Theme& theme) {
    World world(theme, benchmarks::sampleTunnels(1, "Tunnel"));
    world.processes.script = kFlood;
    const auto tunnel = world.store.tunnels().back();
    runUntil([&] { return world.window.isVisible(); });
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

void typeIntoLargeCatalogue(Theme& theme) {
    constexpr int kKeystrokes = 30;
    World world(theme, {});
    world.defaults->set(TunnelStore::kDefaultsKey,
                        {platform::Data(*support::encodeList(benchmarks::sampleTunnels(10000, "Tunnel")))});
    world.store.reload();
    QCoreApplication::processEvents();
    std::vector<double> turns;
    for (int key = 0; key < kKeystrokes; ++key) {
        auto tunnel = world.store.tunnels()[5000];
        tunnel.name += "x";
        QElapsedTimer elapsed;
        elapsed.start();
        world.store.update(tunnel);
        QCoreApplication::processEvents();
        turns.push_back(static_cast<double>(elapsed.nsecsElapsed()) / 1e6);
    }
    std::ranges::sort(turns);
    std::printf(R"("keystroke":{"median":%.2f,"longest":%.2f})", turns[kKeystrokes / 2], turns.back());
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
    std::printf("}\n");
    return 0;
}
