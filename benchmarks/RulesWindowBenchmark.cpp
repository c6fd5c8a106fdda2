// What the user feels with 10,000 rules: the window that opens on them, and a key in their search field.
#include "screens/routing/ProxyRuleWindow.h"
#include "support/FakeClock.h"
#include "support/FakeDispatch.h"
#include "support/FakeHostEnvironment.h"
#include "support/FakeProcesses.h"
#include "support/FakeUserDefaults.h"
#include "support/QuietPlatform.h"
#include "support/RecordWriter.h"

#include <QApplication>
#include <QImage>
#include <QLineEdit>
#include <benchmark/benchmark.h>

#include <memory>

namespace {

using namespace fernwick;

constexpr int kRules = 10000;
constexpr int kHosts = 10;

std::string rules() {
    std::vector<AppRule> rules;
    for (int number = 0; number < kRules; ++number) {
        AppRule rule = AppRule::create();
        rule.name = "Rule number " + std::to_string(number) + (number % 3 == 0 ? " at work" : " at home");
        for (int host = 0; host < kHosts; ++host) {
            rule.targetHosts.push_back("host" + std::to_string(number * kHosts + host) +
                                       ".internal.example.com");
        }
        rule.isEnabled = number % 5 != 0;
        rule.action = static_cast<RuleAction>(number % 4);
        rules.push_back(std::move(rule));
    }
    return support::encodeList(rules).value();
}

class NoApplications final : public platform::InstalledApplications {
public:
    std::vector<platform::InstalledApplication> list() override { return {}; }
};

// All that the window needs, over 10,000 rules.
struct Desk {
    static std::unique_ptr<fakes::FakeUserDefaults> filledDefaults() {
        auto defaults = std::make_unique<fakes::FakeUserDefaults>();
        defaults->setData(std::string(ProxyRuleStore::kRulesKey), rules());
        return defaults;
    }

    // The window as the user sees it first, on its rules.
    std::unique_ptr<ProxyRuleWindow> open() {
        auto window =
            std::make_unique<ProxyRuleWindow>(context(), TunnelNames(), [](auto* /*parent*/, auto&&...) {});
        window->findChild<QTabBar*>()->setCurrentIndex(1);
        window->show();
        QApplication::processEvents();
        return window;
    }

    [[nodiscard]] RoutingContext context() { return {theme, store, manager, dispatch, applications}; }

    std::unique_ptr<fakes::FakeUserDefaults> defaults = filledDefaults();
    fakes::FakeDispatch dispatch;
    fakes::FakeClock clock{dispatch};
    fakes::FakeHostEnvironment host;
    fakes::FakeProcesses processes{dispatch};
    NoRouting routing;
    support::NotificationCenter notifications;
    ProxyRuleStore store{*defaults, dispatch};
    fakes::QuietPlatform platform;
    TunnelManager manager{
        platform.services(dispatch, clock, processes, host, *defaults, notifications, routing)};
    NoApplications applications;
    Theme theme{*qApp, Appearance::light};
};

// From the click until the rules are painted.
void openRules(benchmark::State& state) {
    Desk desk;
    for (auto _ : state) {
        const auto window = desk.open();
        QImage frame(window->size(), QImage::Format_ARGB32_Premultiplied);
        window->render(&frame);
    }
}
BENCHMARK(openRules)->Unit(benchmark::kMillisecond);

// One key in the search field until the list shows what is left, laid out and painted.
void searchRulesPerKeystroke(benchmark::State& state) {
    Desk desk;
    const auto window = desk.open();
    auto* field = window->findChild<QLineEdit*>(QStringLiteral("rulesSearchField"));
    QImage frame(window->size(), QImage::Format_ARGB32_Premultiplied);
    const QStringList searches{QStringLiteral("w"),  QStringLiteral("wo"), QStringLiteral("wor"),
                               QStringLiteral("wo"), QStringLiteral("w"),  QString()};
    qsizetype next = 0;
    for (auto _ : state) {
        field->setText(searches[next]);
        window->render(&frame);
        next = (next + 1) % searches.size();
    }
}
BENCHMARK(searchRulesPerKeystroke)->Unit(benchmark::kMillisecond);

// A rule switched off or on until its row and the counts are up to date.
void toggleRule(benchmark::State& state) {
    Desk desk;
    const auto window = desk.open();
    QImage frame(window->size(), QImage::Format_ARGB32_Premultiplied);
    AppRule rule = desk.store.rules()[5];
    for (auto _ : state) {
        rule.isEnabled = !rule.isEnabled;
        desk.store.updateRule(rule);
        window->render(&frame);
    }
}
BENCHMARK(toggleRule)->Unit(benchmark::kMillisecond);

} // namespace
