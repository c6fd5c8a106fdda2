// Pictures of every state of the window of proxies and rules and of the proxy editor, for eyes, as those of the
// main window: in light and dark, at one and at two pixels for each of the screen's.
#include "RoutingBench.h"
#include "SavedPicture.h"
#include "screens/routing/ProxiesListView.h"
#include "screens/routing/ProxyEditView.h"
#include "screens/routing/RadioRow.h"

#include <QMenu>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <gtest/gtest.h>

namespace fernwick::tests {
namespace {

class RoutingPictures : public testing::TestWithParam<Appearance> {
protected:
    RoutingPictures() : bench(GetParam()) {}

    void save(QWidget& widget, const char* name) {
        bench.settle();
        savePicture(widget, "routing", name, GetParam());
    }

    void fill() {
        ProxyConfig office = proxyNamed("Office gateway", "gate.example.org", 3128);
        office.proto = ProxyProtocol::https;
        office.authentication = {true, "anna", "secret"};
        ProxyConfig staging = proxyNamed("Through staging", "127.0.0.1", 1080);
        staging.tunnelID = tunnels[1].id;
        ProxyConfig old = proxyNamed("Old relay", "10.20.0.4", 1081);
        old.proto = ProxyProtocol::socks4;
        for (const auto& proxy : {office, staging, old}) {
            bench.store.addProxy(proxy);
        }
        AppRule mail = ruleNamed("Mail", {"imap.example.org", "smtp.example.org"}, RuleAction::proxy);
        mail.applications = {"thunderbird", "10.0.0.0/8"};
        mail.targetPorts = {"993", "465", "8000-8100"};
        mail.proxyID = office.id;
        AppRule database = ruleNamed("Production database", {"db1.internal.example.com"}, RuleAction::tunnel);
        database.tunnelID = tunnels[0].id;
        AppRule news = ruleNamed("No news at work", {"news.example.com", "*.news.example.com", "feeds.example"},
                                 RuleAction::block);
        news.isEnabled = false;
        news.applications = {"firefox"};
        AppRule backup = ruleNamed("Backup", {"backup.example.net"}, RuleAction::proxy);
        backup.proxyID = office.id;
        backup.isEnabled = false;
        for (const auto& rule : {mail, database, news, ruleNamed("Everything else"), backup}) {
            bench.store.addRule(rule);
        }
    }

    void openRules() {
        bench.open(tunnels);
        bench.turnTo(ProxyRuleTab::rules);
    }

    ProxyRuleWindow& window() { return *bench.controller.window(); }

    TunnelNames tunnels{{support::Uuid::random(), "Production DB"}, {support::Uuid::random(), "Staging web"}};
    RoutingBench bench;
};

TEST_P(RoutingPictures, Empty) {
    save(bench.open(), "empty-proxies");
    bench.turnTo(ProxyRuleTab::rules);
    save(window(), "empty-rules");
}

TEST_P(RoutingPictures, Proxies) {
    fill();
    save(bench.open(tunnels), "proxies");
    bench.choose("proxiesList", 0);
    save(window(), "proxy-selected");
    bench.choose("proxiesList", 1);
    bench.find<ProxyRuleTabBar>("proxyRuleTabs").setFocus(Qt::TabFocusReason);
    save(window(), "proxy-tunnel");
    bench.find<QLineEdit>("proxiesSearchField").setText(QStringLiteral("nothing"));
    bench.find<QLineEdit>("proxiesSearchField").setFocus();
    save(window(), "proxies-noresults");
}

TEST_P(RoutingPictures, Rules) {
    fill();
    openRules();
    bench.choose("rulesList", 0);
    save(window(), "rule-selected");
    bench.choose("rulesList", 1);
    save(window(), "rule-tunnel");
    bench.choose("rulesList", 2);
    QTest::keyClick(&bench.find<RoutingListView>("rulesList"), Qt::Key_Down);
    QTest::keyClick(&bench.find<RoutingListView>("rulesList"), Qt::Key_Up);
    save(window(), "rule-disabled");
    QTest::keyClick(&bench.find<RoutingListView>("rulesList"), Qt::Key_F10, Qt::ShiftModifier);
    save(*QApplication::activePopupWidget(), "rule-menu");
    QApplication::activePopupWidget()->close();
}

TEST_P(RoutingPictures, Dragged) {
    fill();
    openRules();
    auto* port = bench.find<RoutingListView>("rulesList").viewport();
    const QPoint from = bench.placeOf("rulesList", 0);
    QTest::mousePress(port, Qt::LeftButton, {}, from);
    const QPoint to = bench.placeOf("rulesList", 2) + QPoint(4, 18);
    QMouseEvent move(QEvent::MouseMove, to, port->mapToGlobal(to), Qt::NoButton, Qt::LeftButton, {});
    QApplication::sendEvent(port, &move);
    save(window(), "rule-dragged");
    QTest::mouseRelease(port, Qt::LeftButton, {}, to);
}

TEST_P(RoutingPictures, TwoHundredRows) {
    for (int number = 1; number <= 200; ++number) {
        AppRule rule =
            ruleNamed("Rule " + std::to_string(number), {"host" + std::to_string(number) + ".example"},
                      static_cast<RuleAction>(number % 4));
        rule.targetHosts.insert(rule.targetHosts.end(), number == 5 ? 60 : 0, "another.example.com");
        rule.isEnabled = number % 7 != 0;
        bench.store.addRule(rule);
    }
    openRules();
    bench.choose("rulesList", 4);
    save(window(), "rules-200");
    window().resize(ProxyRuleWindow::kMinimumWidth, ProxyRuleWindow::kMinimumHeight);
    save(window(), "rules-200-smallest");
}

TEST_P(RoutingPictures, LongAndForeignNames) {
    tunnels.push_back({support::Uuid::random(), "A tunnel whose name is far too long for a row in any list"});
    ProxyConfig proxy = proxyNamed("A very long name for a proxy that does not fit into any list at all",
                                   "a-host-name-that-is-also-long.internal.example.com", 65535);
    proxy.tunnelID = tunnels.back().id;
    proxy.authentication = {true, std::string(300, 'u'), "x"};
    bench.store.addProxy(proxy);
    bench.store.addProxy(proxyNamed("שרת הייצור", "example.co.il"));
    bench.store.addProxy(proxyNamed("خادم الإنتاج الرئيسي في مركز البيانات الأول بالقاهرة", "10.0.0.7"));
    bench.store.addProxy(proxyNamed("生产数据库 🚀", "例え.jp"));
    AppRule rule = ruleNamed("שרת הייצור", {"דוגמה.example", std::string(500, 'h')}, RuleAction::proxy);
    rule.proxyID = proxy.id;
    rule.isEnabled = false;
    bench.store.addRule(rule);
    bench.store.addRule(ruleNamed(std::string(5000, 'r'), {std::string(500, 'h')}, RuleAction::tunnel));
    bench.open(tunnels);
    bench.choose("proxiesList", 0);
    save(window(), "names-proxy");
    bench.choose("proxiesList", 2);
    save(window(), "names-rtl");
    bench.turnTo(ProxyRuleTab::rules);
    bench.choose("rulesList", 0);
    save(window(), "names-rule");
}

TEST_P(RoutingPictures, Editor) {
    fill();
    bench.open(tunnels);
    const auto edit = [&](int row) -> ProxyEditView& {
        bench.choose("proxiesList", row);
        QTest::keyClick(&bench.find<RoutingListView>("proxiesList"), Qt::Key_Return);
        return bench.find<ProxyEditView>("proxyEditView");
    };
    auto& socks = edit(1);
    save(socks, "editor-socks5");
    auto* bar = bench.find<QScrollArea>("proxyEditForm").verticalScrollBar();
    bar->setValue(bar->maximum());
    save(socks, "editor-socks5-end");
    socks.reject();
    bench.settle();
    auto& https = edit(0);
    save(https, "editor-https");
    QTest::keyClick(&bench.find<RadioRow>("protocol:HTTPS"), Qt::Key_Up);
    bar = bench.find<QScrollArea>("proxyEditForm").verticalScrollBar();
    bar->setValue(bar->maximum());
    save(https, "editor-https-end");
}

INSTANTIATE_TEST_SUITE_P(Both, RoutingPictures, testing::Values(Appearance::light, Appearance::dark),
                         [](const auto& info) {
                             return info.param == Appearance::dark ? std::string("dark") : std::string("light");
                         });

} // namespace
} // namespace fernwick::tests
