// How much of the processor the application takes while two hundred tunnels change their state once a second
// each, with the popover and the main window open; with the argument "routed", fifty rules lead to some of
// them. The children, the engine's service and the desktop's settings are made up. Prints one JSON object.
#include "Application.h"
#include "SampleCatalogue.h"
#include "routing/Routing.h"
#include "screens/menubar/MenuBarGlyph.h"
#include "screens/menubar/MenuBarIconView.h"
#include "screens/menubar/MenuBarPopover.h"
#include "support/FakeHttpClient.h"
#include "support/FakeServiceControl.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QListView>
#include <QSystemTrayIcon>
#include <QTemporaryDir>
#include <QTimer>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <functional>
#include <string>
#include <string_view>
#include <thread>
#include <utility>

namespace fernwick {
namespace {

constexpr int kTunnels = 200;
constexpr int kRules = 50;
// A tunnel goes connecting, connected, idle: three changes in three seconds.
constexpr const char* kEngine = "/usr/bin/mihomo";
constexpr int kCycle = 3000;  // milliseconds
constexpr int kPause = 300;   // between idle and connecting
constexpr int kWarmUp = 4000; // until every tunnel has had its turn
constexpr int kWatch = 5000;
constexpr platform::Duration kLastWork{2000};

// Children that start and end at once and do nothing in between.
class PaperProcesses final : public platform::Processes {
public:
    explicit PaperProcesses(platform::Dispatch& dispatch) : dispatch_(dispatch) {}

    [[nodiscard]] std::shared_ptr<platform::ChildProcess> makeChild() override {
        return std::make_shared<Child>(dispatch_, ++pids_);
    }
    void sendSignal(int /*pid*/, int /*signal*/) override {}
    void suspend(int /*pid*/) override {}

private:
    class Child final : public platform::ChildProcess {
    public:
        Child(platform::Dispatch& dispatch, int pid) : dispatch_(dispatch), pid_(pid) {}
        [[nodiscard]] std::expected<void, platform::LaunchError>
        launch(platform::ProcessRequest /*request*/, platform::ProcessHandlers handlers) override {
            handlers_ = std::move(handlers);
            running_ = true;
            return {};
        }
        [[nodiscard]] int pid() const override { return pid_; }
        [[nodiscard]] bool isRunning() const override { return running_; }
        void terminate() override {
            if (running_.exchange(false)) {
                dispatch_.main([exit = std::move(handlers_.exit)] { exit(platform::kSignalTerminate); });
            }
        }

    private:
        platform::Dispatch& dispatch_;
        platform::ProcessHandlers handlers_;
        const int pid_;
        std::atomic<bool> running_ = false;
    };

    platform::Dispatch& dispatch_;
    int pids_ = 100000;
};

// The settings of one desktop, each of whose commands is a process of its own that we wait for.
class PaperSettings final : public platform::NetworkProxySettings {
public:
    [[nodiscard]] std::vector<std::string> allNetworkServices() override { return {"Desktop"}; }
    [[nodiscard]] std::string activeAutoProxyURL(const std::string& /*service*/) override {
        waitForCommand();
        return {};
    }
    void setAutoProxyURL(const std::string& /*service*/, std::string_view /*url*/) override {
        waitForCommand();
    }
    void setAutoProxyState(const std::string& /*service*/, bool /*on*/) override { waitForCommand(); }
    void setSocksFirewallProxyOff(const std::string& /*service*/) override { waitForCommand(); }
    void setWebProxyOff(const std::string& /*service*/) override { waitForCommand(); }
    void setSecureWebProxyOff(const std::string& /*service*/) override { waitForCommand(); }

private:
    // What one gsettings(1) takes.
    static void waitForCommand() { std::this_thread::sleep_for(std::chrono::milliseconds(10)); }
};

struct Place : benchmarks::Machine {
    PaperProcesses processes{dispatch};
    fakes::FakeHttpClient http{dispatch};
    fakes::FakeServiceControl service{quiet.files};
    fakes::FakeAdministratorShell administrator;
    PaperSettings settings;
    ProxyRuleStore rules{*defaults, dispatch};
    std::function<TunnelPortMap()> live;
    NoRouting unrouted;
    Routing routing{{.engine = {.dispatch = dispatch,
                                .clock = clock,
                                .files = quiet.files,
                                .commands = quiet.commands,
                                .http = http,
                                .service = service,
                                .administrator = administrator,
                                .host = host,
                                .binaryCandidates = {kEngine},
                                .bundle = {},
                                .print = [](std::string_view /*line*/) {}},
                     .processes = processes,
                     .proxySettings = settings,
                     .rules = rules,
                     .brewCandidates = {},
                     .tunnelPortMap = [this] { return live(); },
                     .pacPort = 0}};
};

// Rules that lead to some of the tunnels.
void addRules(ProxyRuleStore& rules, const std::vector<Tunnel>& tunnels) {
    for (std::size_t number = 0; number < kRules; ++number) {
        auto rule = AppRule::create();
        rule.action = RuleAction::tunnel;
        rule.tunnelID = tunnels[number].id;
        rule.targetHosts = {"host" + std::to_string(number) + ".example"};
        rules.addRule(rule);
    }
}

// The application with its icon and its popover.
struct World : Place, benchmarks::Application {
    World(Theme& theme, const std::vector<Tunnel>& added, bool routed)
        : Application(theme, *this, processes, routed ? static_cast<RoutingLayer&>(routing) : unrouted, added) {
        live = [this] { return tunnels.tunnelPortMap(); };
        if (routed) {
            quiet.files.files[kEngine] = {"program", 0755};
            addRules(rules, added);
            routing.setTunnelStore(store);
        }
        auto* list = window.findChild<QListView*>(QStringLiteral("tunnelList"));
        list->setCurrentIndex(list->model()->index(1, 0)); // behind the sample
        popover.refresh();
        popover.show();
    }

    MenuBarCommands commands{{theme, store, tunnels, dispatch, {}}};
    TunnelTally tally{store, tunnels, dispatch};
    QSystemTrayIcon icon;
    MenuBarIconView iconView{theme, tally, [this](const MenuBarIconView::Look& look, bool drawsAnew) {
                                 if (drawsAnew) {
                                     icon.setIcon(menuBarIcon(look.symbol, look.appearance));
                                 }
                                 icon.setToolTip(look.toolTip);
                             }};
    MenuBarPopover popover{commands, tally, nullptr};
};

// Sends the tunnels through their states, a few at a time and evenly over time, so that no window sees all the
// changes of a second in one go.
class Churn {
public:
    Churn(World& world, const std::vector<Tunnel>& tunnels) : world_(world), tunnels_(tunnels) {
        timer_.setTimerType(Qt::PreciseTimer);
        QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] { catchUp(); });
        elapsed_.start();
        timer_.start(kTogether * kStep);
        changes_ = world.tunnels.statusChanged.connect([this](const support::Uuid& /*id*/) { ++count_; });
    }

    [[nodiscard]] int count() const { return count_; }

private:
    static constexpr int kStep = kCycle / kTunnels;
    static constexpr int kTogether = 4;
    static constexpr int kAhead = kPause / kStep;

    void catchUp() {
        for (; steps_ <= elapsed_.elapsed() / kStep; ++steps_) {
            world_.tunnels.disconnect(tunnel(steps_ + kAhead).id);
            world_.tunnels.connect(tunnel(steps_), world_.store);
        }
    }

    [[nodiscard]] const Tunnel& tunnel(qint64 step) const {
        return tunnels_[static_cast<std::size_t>(step % kTunnels)];
    }

    World& world_;
    const std::vector<Tunnel>& tunnels_;
    QTimer timer_;
    QElapsedTimer elapsed_;
    qint64 steps_ = 0;
    int count_ = 0;
    support::Subscription changes_;
};

void runFor(int milliseconds) {
    QEventLoop loop;
    QTimer::singleShot(milliseconds, Qt::PreciseTimer, &loop, &QEventLoop::quit);
    loop.exec();
}

// Seconds of the processor that this process has had, all threads together.
double processorTime() {
    return static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
}

void measure(Theme& theme, bool routed) {
    const auto tunnels = benchmarks::sampleTunnels(kTunnels, "Tunnel");
    World world(theme, tunnels, routed);
    const Churn churn(world, tunnels);
    runFor(kWarmUp);
    const int before = churn.count();
    const double used = processorTime();
    QElapsedTimer elapsed;
    elapsed.start();
    runFor(kWatch);
    const double seconds = static_cast<double>(elapsed.nsecsElapsed()) / 1e9;
    std::printf(R"({"changesPerSecond":%.1f,"percent":%.2f})"
                "\n",
                (churn.count() - before) / seconds, 100 * (processorTime() - used) / seconds);
    world.tunnels.killAllOnQuit();
    if (!world.dispatch.finishGlobal(kLastWork)) {
        std::_Exit(EXIT_FAILURE); // what is still at work works on the world
    }
}

} // namespace
} // namespace fernwick

int main(int argc, char** argv) {
    const QTemporaryDir home;
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    qputenv("XDG_CONFIG_HOME", home.path().toLocal8Bit());
    qputenv("XDG_DATA_HOME", home.path().toLocal8Bit());
    QApplication application(argc, argv);
    fernwick::Theme theme(application, fernwick::Appearance::light);
    fernwick::measure(theme, QApplication::arguments().contains(QStringLiteral("routed")));
    return 0;
}
