// A platform on which nothing happens by itself, for those who run tunnels and look at something else: no port
// is taken, no secret is stored, the network stays and the machine never sleeps. Threads: the test's thread.
#pragma once

#include "catalogue/KeychainStore.h"
#include "support/FakeCommandRunner.h"
#include "support/FakeFileSystem.h"
#include "support/FakeKeychain.h"
#include "support/FakePlatform.h"
#include "tunnel/TunnelManager.h"

#include <memory>

namespace fernwick::fakes {

struct QuietPlatform {
    // What a manager needs, with the rest from elsewhere. Once: the network's monitor is handed over.
    [[nodiscard]] TunnelServices services(platform::Dispatch& dispatch, const platform::Clock& clock,
                                          platform::Processes& processes, const platform::HostEnvironment& host,
                                          platform::UserDefaults& defaults,
                                          support::NotificationCenter& notifications, RoutingLayer& routing) {
        auto monitor = std::make_unique<FakeNetworkMonitor>();
        network = monitor.get();
        return {dispatch, clock,    processes, host,    defaults, notifications,
                routing,  commands, files,     secrets, power,    std::move(monitor)};
    }

    FakeCommandRunner commands;
    FakeFileSystem files;
    FakeKeychain keychain;
    KeychainStore secrets{keychain};
    FakePowerEvents power;
    FakeNetworkMonitor* network = nullptr; // the manager's own
};

} // namespace fernwick::fakes
