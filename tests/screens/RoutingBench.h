// Everything that the window of proxies and rules needs, on fakes, and ways to look at it.
#pragma once

#include "Bench.h"
#include "screens/routing/ProxyRuleWindowController.h"
#include "screens/routing/RoutingListView.h"

#include <QLabel>
#include <QLineEdit>
#include <QTest>

#include <optional>

namespace fernwick::tests {

inline ProxyConfig proxyNamed(std::string name, std::string address = "127.0.0.1", std::int64_t port = 1080) {
    ProxyConfig proxy = ProxyConfig::create();
    proxy.name = std::move(name);
    proxy.address = std::move(address);
    proxy.port = port;
    return proxy;
}

inline AppRule ruleNamed(std::string name, std::vector<std::string> hosts = {},
                         RuleAction action = RuleAction::direct) {
    AppRule rule = AppRule::create();
    rule.name = std::move(name);
    rule.targetHosts = std::move(hosts);
    rule.action = action;
    return rule;
}

class NoApplications final : public platform::InstalledApplications {
public:
    std::vector<platform::InstalledApplication> list() override { return {}; }
};

// Writes down what the two paths of routing are asked for.
class RoutingRecorder final : public RoutingLayer {
public:
    explicit RoutingRecorder(const ProxyRuleStore& store) : store_(store) {}

    void startPacServer() override {}
    [[nodiscard]] TunnelStore* tunnelStore() const override { return tunnels_; }
    void setTunnelStore(TunnelStore& store) override { tunnels_ = &store; }
    void scheduleRebuild(std::vector<Tunnel> /*tunnels*/, TunnelPortMap /*ports*/) override {
        calls.push_back("engine:" + std::to_string(store_.enabledRules().size()));
    }
    void applySystemProxy(TunnelPortMap /*ports*/) override {
        calls.push_back("system:" + std::to_string(store_.enabledRules().size()));
    }
    void removeAllProxy(std::string_view /*reason*/, bool /*wait*/) override {}
    void stopPacServer() override {}
    void stopEngine() override {}

    std::vector<std::string> calls; // with the number of rules that were on

private:
    const ProxyRuleStore& store_;
    TunnelStore* tunnels_ = nullptr;
};

struct RoutingBench {
    explicit RoutingBench(Appearance appearance = Appearance::light) : theme(*qApp, appearance) {
        routing.setTunnelStore(catalogue);
    }

    [[nodiscard]] RoutingContext context() { return {theme, store, manager, dispatch, applications}; }

    ProxyRuleWindow& open(TunnelNames tunnels = {}) {
        controller.show(std::move(tunnels));
        settle();
        return *controller.window();
    }

    void settle() {
        dispatch.runAll();
        QApplication::sendPostedEvents();
        QApplication::processEvents();
        QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    // The window's widget of that name, which must exist.
    template <class Widget>
    Widget& find(const char* name) const {
        auto* found = controller.window()->findChild<Widget*>(QString::fromLatin1(name));
        if (found == nullptr) {
            qFatal("no widget named %s", name);
        }
        return *found;
    }

    [[nodiscard]] std::string text(const char* label) const { return find<QLabel>(label).text().toStdString(); }

    void turnTo(ProxyRuleTab tab) {
        find<ProxyRuleTabBar>("proxyRuleTabs").select(tab);
        settle();
    }

    [[nodiscard]] std::vector<std::string> rows(const char* list) const {
        std::vector<std::string> names;
        const auto* model = find<RoutingListView>(list).model();
        for (int row = 0; row < model->rowCount(); ++row) {
            names.push_back(model->index(row, 0).data().toString().toStdString());
        }
        return names;
    }

    void choose(const char* list, int row) {
        auto& view = find<RoutingListView>(list);
        view.setCurrentIndex(view.model()->index(row, 0));
        settle();
    }

    // A place in a row, in the list's viewport.
    [[nodiscard]] QPoint placeOf(const char* list, int row) const {
        const auto& view = find<RoutingListView>(list);
        return view.visualRect(view.model()->index(row, 0)).center();
    }

    fakes::FakeDispatch dispatch;
    fakes::FakeClock clock{dispatch};
    fakes::FakeUserDefaults defaults;
    fakes::FakeHostEnvironment host;
    fakes::FakeProcesses processes{dispatch};
    support::NotificationCenter notifications;
    ProxyRuleStore store{defaults, dispatch};
    TunnelStore catalogue{defaults, clock};
    RoutingRecorder routing{store};
    fakes::QuietPlatform platform;
    TunnelManager manager{
        platform.services(dispatch, clock, processes, host, defaults, notifications, routing)};
    NoApplications applications;
    Theme theme;
    std::vector<std::optional<AppRule>> editedRules; // what the rule editor was opened with
    ProxyRuleWindowController controller{
        context(), [this](QWidget* /*parent*/, const TunnelNames& /*tunnels*/, std::optional<AppRule> rule) {
            editedRules.push_back(std::move(rule));
        }};
};

} // namespace fernwick::tests
