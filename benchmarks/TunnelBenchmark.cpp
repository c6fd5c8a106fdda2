// What the application adds to ssh itself, on a real server: the time until a forward accepts, what an idle
// tunnel costs, how long the main thread is held when fifty tunnels come back at once, and bytes per second.
// Usage: fernwick_tunnel_benchmark SSH_PORT USER KEY_FILE SITE_NAME SITE_PORT ROUNDS; prints JSON.

#include "Heartbeat.h"
#include "Wire.h"
#include "catalogue/KeyManager.h"
#include "platform/posix/PosixCommandRunner.h"
#include "platform/posix/PosixHostEnvironment.h"
#include "platform/posix/PosixProcesses.h"
#include "platform/posix/SystemClock.h"
#include "platform/qt/QtDispatch.h"
#include "support/FakeUserDefaults.h"
#include "support/QuietPlatform.h"
#include "tunnel/SshCommand.h"
#include "tunnel/TunnelManager.h"

#include <QCoreApplication>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <numeric>
#include <thread>

namespace fernwick {
namespace {

constexpr int kMany = 50;
constexpr int kMegabytes = 96;

// The real runner, with the time that commands held the main thread.
class TimedRunner final : public platform::CommandRunner {
public:
    explicit TimedRunner(platform::CommandRunner& real) : real_(real) {}
    [[nodiscard]] std::expected<platform::CommandResult, platform::LaunchError>
    run(const platform::CommandRequest& request) override {
        const auto begun = Stopwatch();
        auto result = real_.run(request);
        if (std::this_thread::get_id() == main_) {
            onMain += begun.milliseconds();
        }
        return result;
    }
    double onMain = 0;

private:
    platform::CommandRunner& real_;
    std::thread::id main_ = std::this_thread::get_id();
};

struct Target {
    std::string sshPort, user, key, siteName, sitePort;
};

struct World {
    explicit World(const Target& to) : target(to) {
        IdentityKey entry{support::Uuid::random(), "key", target.key, "", {}};
        KeyManager(defaults).add(entry);
        key = entry.id;
    }

    Tunnel add(int port) {
        Tunnel tunnel;
        tunnel.id = support::Uuid::random();
        tunnel.host = "127.0.0.1";
        tunnel.sshPort = target.sshPort;
        tunnel.user = target.user;
        tunnel.localPort = std::to_string(port);
        tunnel.remoteHost = target.siteName;
        tunnel.remotePort = target.sitePort;
        tunnel.identityKeyID = key;
        tunnel.reconnectOnFailure = true;
        store.add(tunnel);
        return tunnel;
    }

    const Target& target;
    support::Uuid key;
    platform::SystemClock clock;
    platform::PosixHostEnvironment host;
    platform::QtDispatch dispatch;
    platform::ChildLauncher launcher;
    platform::PosixProcesses processes{dispatch, launcher};
    platform::PosixCommandRunner realCommands{launcher};
    TimedRunner commands{realCommands};
    fakes::FakeUserDefaults defaults;
    support::NotificationCenter notifications;
    NoRouting routing;
    TunnelStore store{defaults, clock};
    fakes::QuietPlatform quiet;
    fakes::FakeNetworkMonitor* network = new fakes::FakeNetworkMonitor; // the manager's
    TunnelManager tunnels{{dispatch, clock, processes, host, defaults, notifications, routing, commands,
                           quiet.files, quiet.secrets, quiet.power,
                           std::unique_ptr<platform::NetworkMonitor>(network)}};
};

// The same ssh by hand, ended with this object.
class PlainSsh {
public:
    PlainSsh(World& world, const Tunnel& tunnel) : child_(world.processes.makeChild()) {
        auto variables = world.host.variables();
        variables.erase("SSH_AUTH_SOCK");
        const auto arguments =
            buildSSHArguments(tunnel, {.path = world.target.key, .hasStoredPassphrase = false});
        if (!child_->launch({std::string(kSshProgram), arguments, variables}, {[](auto&&) {}, [](int) {}})) {
            std::abort();
        }
    }
    PlainSsh(const PlainSsh&) = delete;
    PlainSsh& operator=(const PlainSsh&) = delete;
    ~PlainSsh() {
        child_->terminate();
        spinUntil([this] { return !child_->isRunning(); });
    }

private:
    std::shared_ptr<platform::ChildProcess> child_;
};

void stop(World& world, const Tunnel& tunnel, int port) {
    world.tunnels.disconnect(tunnel.id);
    spinUntil([&] { return !accepts(port) && !world.tunnels.activeProcess(tunnel.id); });
    spinFor(std::chrono::milliseconds(1200)); // what the stop planned for later is over
}

// Milliseconds until the forward accepts: through the application, by hand, and of the port scan alone.
void connecting(World& world, int rounds) {
    std::vector<double> ours;
    std::vector<double> plain;
    std::vector<double> scan;
    const int port = freePort();
    const auto tunnel = world.add(port);
    for (int round = 0; round < rounds; ++round) {
        {
            const Acceptance waiting(port);
            world.tunnels.connect(tunnel, world.store);
            ours.push_back(waiting.milliseconds());
        }
        stop(world, tunnel, port);
        const Acceptance waiting(port);
        const PlainSsh ssh(world, tunnel);
        plain.push_back(waiting.milliseconds());
        const auto begun = Stopwatch();
        (void)world.commands.run(
            {.executable = "/bin/sh",
             .arguments = {"-c", "lsof -ti tcp:" + std::to_string(port + 1) + " 2>/dev/null"}});
        scan.push_back(begun.milliseconds());
    }
    std::printf(R"("connect": {"ours": %.2f, "plain": %.2f, "lsof": %.2f},)"
                "\n",
                median(ours), median(plain), median(scan));
}

void throughput(World& world) {
    const int port = freePort();
    const auto tunnel = world.add(port);
    const auto rate = [&] {
        spinUntil([&] { return accepts(port); });
        return fetchRate(port, world.target.siteName, kMegabytes);
    };
    std::vector<double> ours;
    std::vector<double> plain;
    for (int round = 0; round < 3; ++round) {
        world.tunnels.connect(tunnel, world.store);
        ours.push_back(rate());
        stop(world, tunnel, port);
        const PlainSsh ssh(world, tunnel);
        plain.push_back(rate());
    }
    std::printf(R"("throughput": {"ours": %.1f, "plain": %.1f},)"
                "\n",
                median(ours), median(plain));
}

// Fifty tunnels: what each costs when it idles, and what their common return costs the main thread.
void many(World& world) {
    std::vector<Tunnel> all;
    std::vector<int> ports;
    const auto up = [&](int port) { return accepts(port); };
    for (int at = 0; at <= kMany; ++at) {
        ports.push_back(freePort());
        all.push_back(world.add(ports.back()));
    }
    world.tunnels.connect(all.front(), world.store); // threads and caches come with the first
    spinUntil([&] { return up(ports.front()); });
    spinFor(std::chrono::seconds(2));
    const auto before = privateKibibytes();
    for (const auto& tunnel : all) {
        world.tunnels.connect(tunnel, world.store);
    }
    spinUntil([&] { return std::ranges::all_of(ports, up); });
    spinFor(std::chrono::seconds(3));
    const double each = static_cast<double>(privateKibibytes() - before) / kMany;
    const auto earlier = wakeUps();
    spinFor(std::chrono::seconds(5));
    const auto woken = wakeUpsSince(earlier);

    for (const auto& tunnel : all) {
        world.processes.sendSignal(world.tunnels.activeProcess(tunnel.id)->pid(), platform::kSignalKill);
    }
    spinUntil([&] { return std::ranges::none_of(ports, up); });
    spinFor(std::chrono::milliseconds(500));
    world.commands.onMain = 0;
    const Heartbeat heartbeat;
    const auto begun = Stopwatch();
    world.network->report(platform::NetworkPathStatus::unsatisfied);
    world.network->report(platform::NetworkPathStatus::satisfied);
    spinUntil([&] { return std::ranges::all_of(ports, up); });
    std::printf(R"("idle": {"kibibytes": %.1f, "wakeUps": %ld},)"
                "\n"
                R"("comeback": {"milliseconds": %.0f, "longestTurn": %.0f, "scansOnMain": %.0f})"
                "\n",
                each, woken, begun.milliseconds(), heartbeat.longest(), world.commands.onMain);
}

} // namespace
} // namespace fernwick

int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    if (argc != 7) {
        std::fputs("usage: fernwick_tunnel_benchmark SSH_PORT USER KEY_FILE SITE_NAME SITE_PORT ROUNDS\n",
                   stderr);
        return 2;
    }
    const fernwick::Target target{argv[1], argv[2], argv[3], argv[4], argv[5]};
    fernwick::World world(target);
    std::puts("{");
    fernwick::connecting(world, std::atoi(argv[6]));
    fernwick::throughput(world);
    fernwick::many(world);
    std::puts("}");
    world.tunnels.killAllOnQuit();
    world.realCommands.abandonAll();
    return 0;
}
