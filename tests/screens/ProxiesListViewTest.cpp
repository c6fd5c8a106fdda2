// The tab of proxies: list, search, footer, menu, and the chosen proxy beside it.
#include "screens/routing/ProxiesListView.h"

#include "RoutingBench.h"
#include "screens/routing/EntryListView.h"
#include "screens/routing/ProxyEditView.h"
#include "screens/theme/TextField.h"

#include <QMenu>
#include <QPushButton>
#include <QStackedWidget>
#include <QToolButton>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace fernwick::tests {
namespace {

using testing::ElementsAre;

class Proxies : public testing::Test {
protected:
    RoutingListView& list() { return bench.find<RoutingListView>("proxiesList"); }
    QToolButton& removeButton() { return bench.find<QToolButton>("proxiesRemoveButton"); }
    std::string count() { return bench.text("proxiesCount"); }
    QStackedWidget& panel() { return bench.find<QStackedWidget>("proxyPanel"); }

    void add(const std::vector<std::string>& names) {
        for (const auto& name : names) {
            bench.store.addProxy(proxyNamed(name));
        }
    }

    void type(const char* text) {
        bench.find<QLineEdit>("proxiesSearchField").setText(QString::fromUtf8(text));
        bench.settle();
    }

    // What the panel says in place of a proxy, or nothing.
    std::string panelEmpty() {
        const auto* title = panel().currentWidget()->findChild<QLabel*>(QStringLiteral("emptyTitle"));
        return title != nullptr ? title->text().toStdString() : "";
    }

    std::vector<std::string> sections() {
        std::vector<std::string> titles;
        for (const auto* title :
             panel().currentWidget()->findChildren<QLabel*>(QStringLiteral("sectionTitle"))) {
            titles.push_back(title->text().toStdString());
        }
        return titles;
    }

    std::string value(const char* key) {
        const auto* label =
            panel().findChild<QLabel*>(QStringLiteral("value:%1").arg(QString::fromLatin1(key)));
        return label != nullptr ? label->text().toStdString() : "(none)";
    }

    // The text of the empty state in place of the list.
    std::pair<std::string, std::string> listEmpty() {
        const auto* page = static_cast<QStackedWidget*>(list().parentWidget())->currentWidget();
        return {page->findChild<QLabel*>(QStringLiteral("emptyTitle"))->text().toStdString(),
                page->findChild<QLabel*>(QStringLiteral("emptySubtitle"))->text().toStdString()};
    }

    QMenu& menu(int row) {
        bench.choose("proxiesList", row);
        QTest::keyClick(&list(), Qt::Key_F10, Qt::ShiftModifier);
        return *static_cast<QMenu*>(QApplication::activePopupWidget());
    }

    RoutingBench bench;
};

TEST_F(Proxies, TheFooterCountsThemAll) {
    bench.open();
    EXPECT_EQ(count(), "0 proxys");
    add({"one"});
    EXPECT_EQ(count(), "1 proxy");
    add({"two"});
    EXPECT_EQ(count(), "2 proxys");
    type("two");
    EXPECT_EQ(count(), "2 proxys");
}

TEST_F(Proxies, EmptyStatesSayWhetherThereIsAnything) {
    bench.open();
    EXPECT_EQ(listEmpty(), (std::pair<std::string, std::string>("No Proxies", "Click + to add a proxy")));
    add({"one"});
    EXPECT_TRUE(list().isVisible());
    type("nothing");
    EXPECT_EQ(listEmpty(), (std::pair<std::string, std::string>("No Results", "Try a different search")));
    EXPECT_FALSE(list().isVisible());
}

TEST_F(Proxies, ASearchKeepsTheChoiceAndTheClearButtonEmptiesIt) {
    add({"one", "two"});
    bench.open();
    bench.choose("proxiesList", 0);
    type("two");
    EXPECT_THAT(bench.rows("proxiesList"), ElementsAre("two"));
    EXPECT_EQ(bench.text("proxyPanelName"), "one");
    auto& tab = bench.find<QWidget>("proxiesTab");
    tab.findChild<QToolButton*>(QStringLiteral("clearSearchButton"))->click();
    EXPECT_THAT(bench.rows("proxiesList"), ElementsAre("one", "two"));
    EXPECT_EQ(list().selectedRow(), 0);
}

TEST_F(Proxies, RowsAreSpokenWhole) {
    const TunnelNames tunnels{{support::Uuid::random(), "Staging"}};
    ProxyConfig proxy = proxyNamed("Office", "gate.example.org", 3128);
    proxy.tunnelID = tunnels[0].id;
    bench.store.addProxy(proxy);
    bench.open(tunnels);
    EXPECT_EQ(list().model()->index(0, 0).data(Qt::AccessibleTextRole).toString(),
              QStringLiteral("Office, gate.example.org:3128, SOCKS Version 5, Staging"));
    EXPECT_EQ(bench.find<QToolButton>("proxiesAddButton").accessibleName(), QStringLiteral("Add proxy"));
    EXPECT_EQ(removeButton().accessibleName(), QStringLiteral("Remove selected proxy"));
}

TEST_F(Proxies, DeletingTheChosenOneFallsBackToNone) {
    add({"one", "two"});
    bench.open();
    EXPECT_FALSE(removeButton().isEnabled());
    bench.choose("proxiesList", 0);
    EXPECT_TRUE(removeButton().isEnabled());
    EXPECT_EQ(panelEmpty(), "");
    removeButton().click();
    EXPECT_THAT(bench.rows("proxiesList"), ElementsAre("two"));
    EXPECT_EQ(panelEmpty(), "No Proxy Selected");
    EXPECT_EQ(bench.controller.window()->proxies().selectedID(), std::nullopt);
    EXPECT_FALSE(removeButton().isEnabled());
}

TEST_F(Proxies, OneThatIsDeletedElsewhereLeavesThePanel) {
    add({"one", "two"});
    bench.open();
    bench.choose("proxiesList", 0);
    bench.store.deleteProxy(bench.store.proxies()[0].id);
    EXPECT_EQ(panelEmpty(), "No Proxy Selected");
    EXPECT_EQ(list().selectedRow(), -1);
    EXPECT_FALSE(removeButton().isEnabled());
}

TEST_F(Proxies, TheMenuEditsAndDeletes) {
    add({"one", "two"});
    bench.open();
    auto& opened = menu(1);
    ASSERT_EQ(opened.actions().size(), 3);
    EXPECT_EQ(opened.actions()[0]->text(), QStringLiteral("Edit"));
    EXPECT_TRUE(opened.actions()[1]->isSeparator());
    EXPECT_EQ(opened.actions()[2]->text(), QStringLiteral("Delete"));
    opened.actions()[2]->trigger();
    opened.close();
    bench.settle();
    EXPECT_THAT(bench.rows("proxiesList"), ElementsAre("one"));
    auto& again = menu(0);
    again.hide();
    again.actions()[0]->trigger();
    EXPECT_EQ(bench.find<ProxyEditView>("proxyEditView").proxy(), bench.store.proxies()[0]);
}

TEST_F(Proxies, ReturnEditsAndDeleteRemoves) {
    add({"one", "two"});
    bench.open();
    bench.choose("proxiesList", 0);
    QTest::keyClick(&list(), Qt::Key_Return);
    bench.find<ProxyEditView>("proxyEditView").reject();
    bench.settle();
    QTest::keyClick(&list(), Qt::Key_Delete);
    EXPECT_THAT(bench.rows("proxiesList"), ElementsAre("two"));
}

TEST_F(Proxies, AddingTwiceGivesTwoSheetsInARow) {
    bench.open();
    auto& add = bench.find<QToolButton>("proxiesAddButton");
    add.click();
    const auto first = bench.find<ProxyEditView>("proxyEditView").proxy().id;
    add.click(); // behind the sheet, as assistive technology could
    EXPECT_EQ(bench.controller.window()->findChildren<ProxyEditView*>().size(), 1);
    bench.find<QPushButton>("proxySaveButton").click();
    bench.settle();
    add.click();
    EXPECT_NE(bench.find<ProxyEditView>("proxyEditView").proxy().id, first);
}

TEST_F(Proxies, ThePanelShowsTheServerAndHidesThePassword) {
    ProxyConfig proxy = proxyNamed("Office", "gate.example.org", 3128);
    proxy.proto = ProxyProtocol::socks4;
    proxy.authentication = {true, "anna", "a much longer secret"};
    bench.store.addProxy(proxy);
    bench.open();
    bench.choose("proxiesList", 0);
    EXPECT_THAT(sections(), ElementsAre("Server", "Authentication"));
    EXPECT_EQ(bench.text("proxyPanelName"), "Office");
    EXPECT_EQ(bench.text("proxyPanelProtocol"), "SOCKS Version 4");
    EXPECT_EQ(value("Protocol"), "SOCKS Version 4");
    EXPECT_EQ(value("Address"), "gate.example.org");
    EXPECT_EQ(value("Port"), "3128");
    EXPECT_EQ(value("Username"), "anna");
    EXPECT_EQ(value("Password"), "••••••••");
    proxy.authentication.enabled = false;
    bench.store.updateProxy(proxy);
    EXPECT_THAT(sections(), ElementsAre("Server"));
}

TEST_F(Proxies, ThePanelShowsTheTunnelAndTheRules) {
    const TunnelNames tunnels{{support::Uuid::random(), "Staging"}};
    ProxyConfig proxy = proxyNamed("Office");
    proxy.tunnelID = tunnels[0].id;
    bench.store.addProxy(proxy);
    AppRule rule = ruleNamed("Mail", {}, RuleAction::proxy);
    rule.proxyID = proxy.id;
    bench.store.addRule(rule);
    bench.store.addRule(ruleNamed("Other", {}, RuleAction::proxy));
    bench.open(tunnels);
    bench.choose("proxiesList", 0);
    EXPECT_THAT(sections(), ElementsAre("Server", "Bound Tunnel", "Used by 1 Rule"));
    EXPECT_EQ(bench.text("lineText"), "Staging");
    rule.id = support::Uuid::random();
    rule.isEnabled = false;
    bench.store.addRule(rule);
    EXPECT_THAT(sections(), ElementsAre("Server", "Bound Tunnel", "Used by 2 Rules"));
    const auto* users = bench.find<EntryListView>("entryList").model();
    EXPECT_EQ(users->index(1, 0).data(Qt::AccessibleTextRole).toString(), QStringLiteral("Mail, off"));
}

TEST_F(Proxies, ATunnelThatIsGoneHasNoNameInThePanel) {
    ProxyConfig proxy = proxyNamed("Office");
    proxy.tunnelID = support::Uuid::random();
    bench.store.addProxy(proxy);
    bench.open({{support::Uuid::random(), "Staging"}});
    bench.choose("proxiesList", 0);
    EXPECT_THAT(sections(), ElementsAre("Server", "Bound Tunnel"));
    EXPECT_EQ(panel().findChild<QLabel*>(QStringLiteral("lineText")), nullptr);
}

TEST_F(Proxies, LongAndForeignNamesTakeNoMoreRoomThanThereIs) {
    bench.store.addProxy(proxyNamed(std::string(10000, 'x'), std::string(10000, 'y'), 65535));
    bench.store.addProxy(proxyNamed("שרת הייצור\nline two", "bad \xff bytes"));
    auto& window = bench.open({{support::Uuid::random(), std::string(10000, 'z')}});
    bench.choose("proxiesList", 0);
    EXPECT_EQ(window.size(), QSize(820, 560));
    EXPECT_LE(bench.text("proxyPanelName").size(), 300U);
    bench.choose("proxiesList", 1);
    EXPECT_FALSE(bench.text("proxyPanelName").contains('\n'));
    bench.find<QPushButton>("proxyPanelEditButton").click();
    EXPECT_EQ(bench.find<ProxyEditView>("proxyEditView").size(), QSize(480, 580));
}

TEST_F(Proxies, MovingOneUnderASearchUsesThePlacesOnTheScreen) {
    add({"alpha", "two", "alto"});
    bench.open();
    type("al");
    bench.choose("proxiesList", 1); // "alto", third in the store
    QTest::keyClick(&list(), Qt::Key_Up, Qt::AltModifier);
    std::vector<std::string> stored;
    for (const auto& proxy : bench.store.proxies()) {
        stored.push_back(proxy.name);
    }
    EXPECT_THAT(stored, ElementsAre("two", "alpha", "alto"));
}

TEST_F(Proxies, NothingHereRoutesAnew) {
    add({"one", "two"});
    bench.open();
    bench.choose("proxiesList", 0);
    QTest::keyClick(&list(), Qt::Key_Down, Qt::AltModifier);
    QTest::keyClick(&list(), Qt::Key_Delete);
    bench.settle();
    EXPECT_TRUE(bench.routing.calls.empty());
}

} // namespace
} // namespace fernwick::tests
