// The window of proxies and rules as a whole: one at a time, its tabs and its keys.
#include "RoutingBench.h"
#include "screens/routing/ProxiesListView.h"
#include "screens/routing/ProxyEditView.h"
#include "screens/routing/RulesListView.h"
#include "support/RecordWriter.h"

#include <QAccessible>
#include <QElapsedTimer>
#include <QImage>
#include <QLineEdit>
#include <gtest/gtest.h>

#include <algorithm>
#include <limits>

namespace fernwick::tests {
namespace {

class ProxyRules : public testing::Test {
protected:
    QWidget* focused() { return bench.controller.window()->focusWidget(); }
    ProxyRuleTabBar& tabs() { return bench.find<ProxyRuleTabBar>("proxyRuleTabs"); }

    void press(QKeyCombination keys) {
        QTest::keyClick(bench.controller.window(), keys.key(), keys.keyboardModifiers());
        bench.settle();
    }

    RoutingBench bench;
};

TEST_F(ProxyRules, OpensOnProxiesInItsSize) {
    const auto& window = bench.open();
    EXPECT_EQ(window.windowTitle(), QStringLiteral("Proxies & Rules"));
    EXPECT_EQ(window.size(), QSize(820, 560));
    EXPECT_EQ(window.minimumSize(), QSize(700, 460));
    EXPECT_EQ(window.selectedTab(), ProxyRuleTab::proxies);
    EXPECT_TRUE(window.isVisible());
}

TEST_F(ProxyRules, ASecondShowKeepsTheWindowAsItIsAndDropsTheTunnels) {
    bench.store.addRule(ruleNamed("one"));
    auto& window = bench.open({{support::Uuid::random(), "web"}});
    bench.turnTo(ProxyRuleTab::rules);
    bench.choose("rulesList", 0);
    const auto chosen = window.rules().selectedID();
    ASSERT_TRUE(chosen);
    EXPECT_EQ(&bench.open({}), &window);
    EXPECT_EQ(window.selectedTab(), ProxyRuleTab::rules);
    EXPECT_EQ(window.rules().selectedID(), chosen);
    EXPECT_EQ(window.tunnels().size(), 1U);
}

TEST_F(ProxyRules, ASecondShowBringsBackAMinimizedWindow) {
    auto& window = bench.open();
    window.showMinimized();
    bench.settle();
    bench.open();
    EXPECT_FALSE(window.isMinimized());
}

TEST_F(ProxyRules, AfterClosingANewWindowOpensOnProxies) {
    const QPointer<ProxyRuleWindow> first = &bench.open();
    bench.turnTo(ProxyRuleTab::rules);
    first->close();
    EXPECT_EQ(bench.controller.window(), nullptr);
    bench.settle();
    EXPECT_TRUE(first.isNull());
    EXPECT_EQ(bench.open().selectedTab(), ProxyRuleTab::proxies);
}

TEST_F(ProxyRules, TheBadgesCountTheRecords) {
    bench.store.addProxy(proxyNamed("one"));
    bench.open();
    EXPECT_EQ(tabs().badge(ProxyRuleTab::proxies), 1U);
    EXPECT_EQ(tabs().badge(ProxyRuleTab::rules), 0U);
    bench.store.addRule(ruleNamed("a"));
    bench.store.addRule(ruleNamed("b"));
    EXPECT_EQ(tabs().badge(ProxyRuleTab::rules), 2U);
    EXPECT_EQ(tabs().accessibleTabName(1), QStringLiteral("Rules, 2"));
}

TEST_F(ProxyRules, TabsHaveTheirRole) {
    bench.open();
    auto* bar = QAccessible::queryAccessibleInterface(&tabs());
    EXPECT_EQ(bar->role(), QAccessible::PageTabList);
    EXPECT_EQ(bar->child(0)->role(), QAccessible::PageTab);
    EXPECT_EQ(bar->child(0)->text(QAccessible::Name), QStringLiteral("Proxies, 0"));
}

TEST_F(ProxyRules, ArrowsTurnToTheOtherTab) {
    bench.open();
    tabs().setFocus(Qt::TabFocusReason);
    QTest::keyClick(&tabs(), Qt::Key_Right);
    EXPECT_EQ(bench.controller.window()->selectedTab(), ProxyRuleTab::rules);
    EXPECT_TRUE(bench.find<QWidget>("rulesTab").isVisible());
    QTest::keyClick(&tabs(), Qt::Key_Left);
    EXPECT_EQ(bench.controller.window()->selectedTab(), ProxyRuleTab::proxies);
}

TEST_F(ProxyRules, TurningFromAListLeadsToTheOtherList) {
    bench.store.addProxy(proxyNamed("one"));
    bench.store.addRule(ruleNamed("one"));
    bench.open();
    EXPECT_EQ(focused()->objectName(), QStringLiteral("proxiesList"));
    bench.turnTo(ProxyRuleTab::rules);
    EXPECT_EQ(focused()->objectName(), QStringLiteral("rulesList"));
}

TEST_F(ProxyRules, SaysThatChangesApplyImmediately) {
    const auto labels = bench.open().findChildren<QLabel*>();
    EXPECT_TRUE(std::ranges::any_of(labels, [](const QLabel* label) {
        return label->text() == QStringLiteral("Changes apply immediately");
    }));
}

TEST_F(ProxyRules, KeysLeadToTheSearchOfTheOpenTab) {
    bench.open();
    press(Qt::CTRL | Qt::Key_F);
    EXPECT_EQ(focused()->objectName(), QStringLiteral("proxiesSearchField"));
    bench.turnTo(ProxyRuleTab::rules);
    press(Qt::CTRL | Qt::Key_F);
    EXPECT_EQ(focused()->objectName(), QStringLiteral("rulesSearchField"));
}

TEST_F(ProxyRules, KeysAddARecordToTheOpenTab) {
    bench.open();
    bench.turnTo(ProxyRuleTab::rules);
    press(Qt::CTRL | Qt::Key_N);
    ASSERT_EQ(bench.editedRules.size(), 1U);
    EXPECT_EQ(bench.editedRules[0], std::nullopt);
    bench.turnTo(ProxyRuleTab::proxies);
    press(Qt::CTRL | Qt::Key_N);
    EXPECT_TRUE(bench.find<ProxyEditView>("proxyEditView").isVisible());
}

TEST_F(ProxyRules, KeysCloseTheWindow) {
    bench.open();
    press(Qt::CTRL | Qt::Key_W);
    EXPECT_EQ(bench.controller.window(), nullptr);
}

TEST_F(ProxyRules, TabGoesThroughAllControlsInTheOrderOfTheScreen) {
    bench.store.addProxy(proxyNamed("one"));
    bench.open();
    bench.choose("proxiesList", 0);
    tabs().setFocus(Qt::TabFocusReason);
    QStringList names;
    for (int step = 0; step < 8; ++step) {
        names.append(focused()->objectName());
        QTest::keyClick(focused(), Qt::Key_Tab);
    }
    EXPECT_EQ(names.mid(0, 7), QStringLiteral("proxyRuleTabs proxiesSearchField proxiesList proxiesAddButton "
                                              "proxiesRemoveButton proxyPanelEditButton proxyPanelScroll")
                                   .split(QLatin1Char(' ')));
    EXPECT_EQ(names[7], QStringLiteral("proxyRuleTabs")); // and no trap
}

TEST_F(ProxyRules, ClosingTheWindowTakesItsSheetAlong) {
    bench.open();
    press(Qt::CTRL | Qt::Key_N);
    const QPointer<ProxyEditView> sheet = &bench.find<ProxyEditView>("proxyEditView");
    bench.controller.window()->close();
    bench.settle();
    EXPECT_TRUE(sheet.isNull());
}

// Generous beside the figures of script/bench, which has the limits: this only catches work that grows with the
// square of the list.
TEST_F(ProxyRules, TenThousandRulesOpenAndAreSearchedAtOnce) {
    std::vector<AppRule> rules(10000, ruleNamed("", {"a.internal.example.com", "b.internal.example.com"}));
    for (std::size_t at = 0; at < rules.size(); ++at) {
        rules[at].id = support::Uuid::random();
        rules[at].name = "Rule number " + std::to_string(at);
    }
    bench.defaults.setData(std::string(ProxyRuleStore::kRulesKey), support::encodeList(rules).value());
    bench.store.reloadNow();
    QElapsedTimer timer;
    timer.start();
    auto& window = bench.open();
    bench.turnTo(ProxyRuleTab::rules);
    window.grab();
    EXPECT_LT(timer.elapsed(), 1500);
    timer.start();
    QTest::keyClicks(&bench.find<QLineEdit>("rulesSearchField"), QStringLiteral("9999"));
    window.grab();
    EXPECT_LT(timer.elapsed(), 1500);
    EXPECT_EQ(bench.rows("rulesList"), std::vector<std::string>{"Rule number 9999"});
}

} // namespace
} // namespace fernwick::tests
