// Everything that the rule editor needs, on fakes, and ways to fill it in.
#pragma once

#include "screens/routing/ApplicationPicker.h"
#include "screens/routing/EntryChip.h"
#include "screens/routing/EntryChips.h"
#include "screens/routing/RuleEditView.h"
#include "support/FakeClock.h"
#include "support/FakeDispatch.h"
#include "support/FakeHostEnvironment.h"
#include "support/FakeInstalledApplications.h"
#include "support/FakeProcesses.h"
#include "support/FakeUserDefaults.h"
#include "support/QuietPlatform.h"

#include <QApplication>
#include <QPointer>
#include <QTest>

#include <optional>
#include <string>
#include <vector>

namespace fernwick::tests {

// Writes down what it is asked for.
class RoutingLog final : public RoutingLayer {
public:
    void startPacServer() override {}
    [[nodiscard]] TunnelStore* tunnelStore() const override { return nullptr; }
    void setTunnelStore(TunnelStore& /*store*/) override {}
    void scheduleRebuild(std::vector<Tunnel> /*tunnels*/, TunnelPortMap /*ports*/) override {
        calls.emplace_back("scheduleRebuild");
    }
    void applySystemProxy(TunnelPortMap /*ports*/) override { calls.emplace_back("applySystemProxy"); }
    void removeAllProxy(std::string_view /*reason*/, bool /*wait*/) override {
        calls.emplace_back("removeAllProxy");
    }
    void stopPacServer() override {}
    void stopEngine() override {}

    std::vector<std::string> calls;
};

struct RuleEditBench {
    explicit RuleEditBench(Appearance appearance = Appearance::light) : theme(*qApp, appearance) {}
    RuleEditBench(const RuleEditBench&) = delete;
    RuleEditBench& operator=(const RuleEditBench&) = delete;
    ~RuleEditBench() { delete view.get(); }

    RuleEditView& open(std::optional<AppRule> rule = std::nullopt) {
        delete view.get();
        view = new RuleEditView(context, tunnelNames, std::move(rule), nullptr);
        view->open();
        QApplication::setActiveWindow(view);
        settle();
        return *view;
    }

    // Lets everything that is queued happen, without letting virtual time pass.
    void settle() {
        constexpr int kLevels = 8; // a change of size climbs from layout to layout, one at a time
        dispatch.runAll();
        for (int level = 0; level < kLevels; ++level) {
            QApplication::sendPostedEvents();
            QApplication::processEvents();
        }
        QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    // The sheet's widget of that name, which must exist.
    template <class Widget>
    Widget& find(const char* name) const {
        auto* found = view->findChild<Widget*>(QString::fromLatin1(name));
        if (found == nullptr) {
            qFatal("no widget named %s", name);
        }
        return *found;
    }

    void click(const char* button) {
        find<QAbstractButton>(button).click();
        settle();
    }

    // Replaces what a field holds by typing.
    void type(const char* field, const QString& text) const {
        auto& widget = find<QWidget>(field);
        QTest::keyClick(&widget, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClick(&widget, Qt::Key_Delete);
        QTest::keyClicks(&widget, text);
    }

    [[nodiscard]] const std::vector<EntryChip*>& chips() const {
        return find<EntryChips>("entryChips").chips();
    }

    // What a rule with these applications is.
    [[nodiscard]] static AppRule ruleFor(std::vector<std::string> applications) {
        auto rule = AppRule::create();
        rule.applications = std::move(applications);
        return rule;
    }

    fakes::FakeDispatch dispatch;
    fakes::FakeClock clock{dispatch};
    fakes::FakeUserDefaults defaults;
    fakes::FakeHostEnvironment host;
    fakes::FakeProcesses processes{dispatch};
    RoutingLog routing;
    support::NotificationCenter notifications;
    fakes::QuietPlatform platform;
    fakes::FakeInstalledApplications applications;
    TunnelManager manager{
        platform.services(dispatch, clock, processes, host, defaults, notifications, routing)};
    ProxyRuleStore store{defaults, dispatch};
    Theme theme;
    RoutingContext context{theme, store, manager, dispatch, applications};
    TunnelNames tunnelNames;
    QPointer<RuleEditView> view;
};

} // namespace fernwick::tests
