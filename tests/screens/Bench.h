// Everything that the main window needs, on fakes, and a theme that is forced to one appearance.
#pragma once

#include "screens/main/ContentView.h"
#include "screens/main/MainWindow.h"
#include "support/FakeClock.h"
#include "support/FakeDispatch.h"
#include "support/FakeHostEnvironment.h"
#include "support/FakeKeychain.h"
#include "support/FakePlatform.h"
#include "support/FakeProcesses.h"
#include "support/FakeUserDefaults.h"
#include "support/QuietPlatform.h"

#include <QApplication>

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace fernwick::tests {

inline Tunnel tunnelNamed(std::string name, std::string user = "ubuntu", std::string host = "example.com") {
    Tunnel tunnel;
    tunnel.id = support::Uuid::random();
    tunnel.name = std::move(name);
    tunnel.user = std::move(user);
    tunnel.host = std::move(host);
    return tunnel;
}

struct Bench {
    explicit Bench(Appearance appearance = Appearance::light) : theme(*qApp, appearance) {
        store.remove(store.tunnels().front().id); // the sample of a first start
    }

    MainWindow& open() {
        window = std::make_unique<MainWindow>(context());
        window->show();
        settle();
        return *window;
    }

    [[nodiscard]] MainWindowContext context() {
        return {theme,
                store,
                manager,
                keys,
                tags,
                notifications,
                dispatch,
                clock,
                host,
                keychain,
                dialogs,
                pasteboard,
                [this](auto list) { proxyRules.push_back(std::move(list)); }};
    }

    // Lets everything that is queued happen, without letting virtual time pass.
    void settle() {
        dispatch.runAll();
        QApplication::sendPostedEvents();
        QApplication::processEvents();
    }

    Tunnel add(Tunnel tunnel) {
        store.add(tunnel);
        settle();
        return tunnel;
    }

    void connected(const Tunnel& tunnel) {
        manager.connect(tunnel, store);
        dispatch.advance(TunnelManager::kConfirmDelay);
        settle();
    }

    // The window's widget of that name, which must exist.
    template <class Widget>
    Widget& find(const char* name) const {
        auto* found = window->findChild<Widget*>(QString::fromLatin1(name));
        if (found == nullptr) {
            qFatal("no widget named %s", name);
        }
        return *found;
    }

    [[nodiscard]] const ContentState& state() const { return window->content().state(); }

    fakes::FakeDispatch dispatch;
    fakes::FakeClock clock{dispatch};
    fakes::FakeUserDefaults defaults;
    fakes::FakeHostEnvironment host;
    fakes::FakeProcesses processes{dispatch};
    NoRouting routing;
    support::NotificationCenter notifications;
    TunnelStore store{defaults, clock};
    KeyManager keys{defaults};
    TagManager tags{defaults};
    fakes::QuietPlatform platform;
    fakes::FakeKeychain& secrets = platform.keychain;
    KeychainStore& keychain = platform.secrets;
    fakes::FakeDialogs dialogs;
    fakes::FakePasteboard pasteboard;
    TunnelManager manager{
        platform.services(dispatch, clock, processes, host, defaults, notifications, routing)};
    Theme theme;
    std::vector<std::vector<std::pair<support::Uuid, std::string>>> proxyRules;
    std::unique_ptr<MainWindow> window;
};

} // namespace fernwick::tests
