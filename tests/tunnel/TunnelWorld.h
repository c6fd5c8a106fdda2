// A tunnel manager among fakes, and what a test of it looks at.
#pragma once

#include "catalogue/TunnelStore.h"
#include "support/FakeClock.h"
#include "support/FakeDispatch.h"
#include "support/FakeHostEnvironment.h"
#include "support/FakeProcesses.h"
#include "support/FakeUserDefaults.h"
#include "support/QuietPlatform.h"
#include "tunnel/TunnelManager.h"

#include <algorithm>
#include <chrono>
#include <string>
#include <vector>

namespace fernwick::fakes {

// A routing layer that notes what it is asked for.
class RecordingRouting final : public RoutingLayer {
public:
    void startPacServer() override { calls.emplace_back("startPacServer"); }
    [[nodiscard]] TunnelStore* tunnelStore() const override { return store; }
    void setTunnelStore(TunnelStore& held) override { store = &held; }
    void scheduleRebuild(std::vector<Tunnel> tunnels, TunnelPortMap ports) override {
        calls.push_back("scheduleRebuild " + std::to_string(tunnels.size()) + " tunnels, " +
                        std::to_string(ports.size()) + " ports");
        rebuiltTunnels = std::move(tunnels);
        rebuiltPorts = std::move(ports);
    }
    void applySystemProxy(TunnelPortMap ports) override {
        calls.push_back("applySystemProxy " + std::to_string(ports.size()));
        appliedPorts = std::move(ports);
    }
    void removeAllProxy(std::string_view reason, bool wait) override {
        calls.push_back("removeAllProxy " + std::string(reason) + (wait ? " and wait" : ""));
    }
    void stopPacServer() override { calls.emplace_back("stopPacServer"); }
    void stopEngine() override { calls.emplace_back("stopEngine"); }

    // How often a call that begins with `text` was made.
    [[nodiscard]] auto count(std::string_view text) const {
        return std::ranges::count_if(calls, [&](const auto& call) { return call.starts_with(text); });
    }

    TunnelStore* store = nullptr;
    std::vector<std::string> calls;
    std::vector<Tunnel> rebuiltTunnels;
    TunnelPortMap rebuiltPorts, appliedPorts;
};

struct TunnelWorld {
    FakeDispatch dispatch;
    FakeClock clock{dispatch};
    FakeProcesses processes{dispatch};
    FakeHostEnvironment host;
    FakeUserDefaults defaults;
    support::NotificationCenter notifications;
    RecordingRouting routing;
    TunnelStore store{defaults, clock};
    QuietPlatform platform;
    TunnelManager manager{
        platform.services(dispatch, clock, processes, host, defaults, notifications, routing)};

    // Puts a tunnel into the store and returns it.
    Tunnel add(std::string localPort = "8080") {
        Tunnel tunnel;
        tunnel.id = support::Uuid::random();
        tunnel.name = "Test";
        tunnel.host = "example.com";
        tunnel.user = "ubuntu";
        tunnel.localPort = std::move(localPort);
        tunnel.reconnectOnFailure = false;
        store.add(tunnel);
        return tunnel;
    }

    // What composes the children, on its own.
    [[nodiscard]] SshLauncher launcher() {
        return {host, defaults, platform.secrets, AskpassScripts(dispatch, platform.files, host, [](auto&&) {}),
                manager.logs()};
    }

    // Connects and lets the launch happen, but no time pass.
    FakeChildProcess& launch(const Tunnel& tunnel) {
        manager.connect(tunnel, store);
        dispatch.runAll();
        return processes.last();
    }

    // Connects and waits until the tunnel counts as up.
    FakeChildProcess& bringUp(const Tunnel& tunnel) {
        auto& child = launch(tunnel);
        dispatch.advance(TunnelManager::kConfirmDelay);
        return child;
    }

    // The messages of a tunnel's log.
    [[nodiscard]] std::vector<std::string> messages(const Tunnel& tunnel) const {
        std::vector<std::string> texts;
        for (const auto& line : manager.logs().lines(tunnel.id)) {
            texts.push_back(line.message);
        }
        return texts;
    }

    // The last line that begins with `text`, or null.
    [[nodiscard]] const LogEntry* line(const Tunnel& tunnel, std::string_view text) const {
        const auto& lines = manager.logs().lines(tunnel.id);
        const auto found = std::find_if(lines.rbegin(), lines.rend(),
                                        [&](const auto& entry) { return entry.message.starts_with(text); });
        return found != lines.rend() ? &*found : nullptr;
    }
};

} // namespace fernwick::fakes
