// The application without its shell, on the services of this machine and its real event loop.
// Threads: the main thread.
#pragma once

#include "catalogue/KeyManager.h"
#include "catalogue/TagManager.h"
#include "platform/posix/FileUserDefaults.h"
#include "platform/posix/PosixHostEnvironment.h"
#include "platform/posix/SystemClock.h"
#include "platform/qt/QtDispatch.h"
#include "screens/main/MainWindow.h"
#include "screens/theme/Theme.h"
#include "support/NotificationCenter.h"
#include "support/QuietPlatform.h"
#include "tunnel/TunnelManager.h"

#include <memory>
#include <string_view>
#include <vector>

namespace fernwick::benchmarks {

inline constexpr std::string_view kDomain = "com.fernwick.Benchmark";

// What is asked of the operating system. Preferences lie in XDG_CONFIG_HOME. No port is looked at: what lsof
// costs is measured elsewhere.
struct Machine {
    platform::SystemClock clock;
    platform::PosixHostEnvironment host;
    platform::QtDispatch dispatch;
    platform::FileUserDefaultsProvider provider{dispatch, host};
    std::unique_ptr<platform::UserDefaults> defaults = provider.open(kDomain);
    support::NotificationCenter notifications;
    fakes::QuietPlatform quiet;
    fakes::FakeDialogs dialogs;
    fakes::FakePasteboard pasteboard;
};

// State and main window, which is shown with the tunnels `added` behind the sample of a first start. All that
// is given outlives it.
struct Application {
    Application(Theme& worn, Machine& machine, platform::Processes& processes, RoutingLayer& routing,
                const std::vector<Tunnel>& added)
        : theme(worn),
          store(*machine.defaults, machine.clock),
          tunnels(machine.quiet.services(machine.dispatch, machine.clock, processes, machine.host,
                                         *machine.defaults, machine.notifications, routing)),
          keys(*machine.defaults),
          tags(*machine.defaults),
          window({theme, store, tunnels, keys, tags, machine.notifications, machine.dispatch, machine.clock,
                  machine.host, machine.quiet.secrets, machine.dialogs, machine.pasteboard}) {
        for (const auto& tunnel : added) {
            store.add(tunnel);
        }
        window.show();
    }

    Theme& theme;
    TunnelStore store;
    TunnelManager tunnels;
    KeyManager keys;
    TagManager tags;
    MainWindow window;
};

} // namespace fernwick::benchmarks
