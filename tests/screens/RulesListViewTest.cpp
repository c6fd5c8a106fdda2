// The tab of rules: list, search, footer, menu, order, and the chosen rule beside it.
#include "screens/routing/RulesListView.h"

#include "RoutingBench.h"
#include "screens/routing/Capsule.h"
#include "screens/routing/EntryListView.h"

#include <QMenu>
#include <QPushButton>
#include <QScrollBar>
#include <QStackedWidget>
#include <QToolButton>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace fernwick::tests {
namespace {

using testing::ElementsAre;

class Rules : public testing::Test {
protected:
    RoutingListView& list() { return bench.find<RoutingListView>("rulesList"); }
    std::string count() { return bench.text("rulesCount"); }
    QStackedWidget& panel() { return bench.find<QStackedWidget>("rulePanel"); }

    void open(const TunnelNames& tunnels = {}) {
        bench.open(tunnels);
        bench.turnTo(ProxyRuleTab::rules);
    }

    void add(const std::vector<std::string>& names) {
        for (const auto& name : names) {
            bench.store.addRule(ruleNamed(name));
        }
    }

    void choose(int row) { bench.choose("rulesList", row); }

    std::vector<std::string> stored() {
        std::vector<std::string> names;
        for (const auto& rule : bench.store.rules()) {
            names.push_back(rule.name);
        }
        return names;
    }

    QString spoken(int row) { return list().model()->index(row, 0).data(Qt::AccessibleTextRole).toString(); }

    std::vector<std::string> sections() {
        std::vector<std::string> titles;
        for (const auto* title :
             panel().currentWidget()->findChildren<QLabel*>(QStringLiteral("sectionTitle"))) {
            titles.push_back(title->text().toStdString());
        }
        return titles;
    }

    std::string panelLabel(const char* name) {
        const auto* label = panel().currentWidget()->findChild<QLabel*>(QString::fromLatin1(name));
        return label != nullptr ? label->text().toStdString() : "(none)";
    }

    QMenu& menu(int row) {
        choose(row);
        QContextMenuEvent event(QContextMenuEvent::Keyboard, QPoint(), QPoint());
        QApplication::sendEvent(&list(), &event);
        return *static_cast<QMenu*>(QApplication::activePopupWidget());
    }

    void choosePoint(QMenu& menu, int action) {
        menu.actions()[action]->trigger();
        menu.close();
        bench.settle();
    }

    // Drags a row with the mouse to a height in the list.
    void drag(int row, int y) {
        auto* port = list().viewport();
        const QPoint from = bench.placeOf("rulesList", row);
        QTest::mousePress(port, Qt::LeftButton, {}, from);
        for (const QPoint where : {from + QPoint(0, 15), QPoint(from.x(), y)}) {
            QMouseEvent move(QEvent::MouseMove, where, port->mapToGlobal(where), Qt::NoButton, Qt::LeftButton,
                             {});
            QApplication::sendEvent(port, &move);
        }
        bench.controller.window()->grab();
        QTest::mouseRelease(port, Qt::LeftButton, {}, QPoint(from.x(), y));
        bench.settle();
    }

    RoutingBench bench;
};

TEST_F(Rules, DisablingOneCountsAtOnceAndReachesBothPaths) {
    add({"one", "two"});
    open();
    EXPECT_EQ(count(), "2/2 active");
    auto& opened = menu(0);
    ASSERT_EQ(opened.actions().size(), 4);
    EXPECT_EQ(opened.actions()[0]->text(), QStringLiteral("Edit"));
    EXPECT_EQ(opened.actions()[1]->text(), QStringLiteral("Disable"));
    EXPECT_TRUE(opened.actions()[2]->isSeparator());
    EXPECT_EQ(opened.actions()[3]->text(), QStringLiteral("Delete"));
    choosePoint(opened, 1);
    EXPECT_EQ(count(), "1/2 active");
    EXPECT_FALSE(bench.store.rules()[0].isEnabled);
    EXPECT_THAT(bench.routing.calls, testing::UnorderedElementsAre("engine:1", "system:1"));
    EXPECT_EQ(menu(0).actions()[1]->text(), QStringLiteral("Enable"));
    QApplication::activePopupWidget()->close();
}

// None is chosen at first, though the keyboard stands on one.
TEST_F(Rules, AKeyThatMovesChoosesARowWhereNoneWasChosen) {
    add({"one", "two", "three"});
    open();
    for (const auto& [key, row] : std::vector<std::pair<Qt::Key, int>>{{Qt::Key_Home, 0},
                                                                       {Qt::Key_Down, 0},
                                                                       {Qt::Key_Up, 0},
                                                                       {Qt::Key_PageDown, 0},
                                                                       {Qt::Key_PageUp, 0},
                                                                       {Qt::Key_End, 2}}) {
        list().selectionModel()->clear();
        QTest::keyClick(&list(), key);
        EXPECT_EQ(list().selectedRow(), row) << key;
    }
    QTest::keyClick(&list(), Qt::Key_Up);
    EXPECT_EQ(list().selectedRow(), 1);
}

TEST_F(Rules, TheRowWhereTheKeyboardStandsIsChosenFirst) {
    add({"one", "two", "three"});
    open();
    list().selectionModel()->setCurrentIndex(list().model()->index(1, 0), QItemSelectionModel::NoUpdate);
    QTest::keyClick(&list(), Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(list().selectedRow(), -1);
    QTest::keyClick(&list(), Qt::Key_Down);
    EXPECT_EQ(list().selectedRow(), 1);
}

TEST_F(Rules, KeysInAnEmptyListChooseNothing) {
    open();
    for (const auto key : {Qt::Key_Home, Qt::Key_End, Qt::Key_Down, Qt::Key_Space, Qt::Key_Delete}) {
        QTest::keyClick(&list(), key);
        EXPECT_EQ(list().selectedRow(), -1) << key;
    }
}

TEST_F(Rules, TheSpaceBarTogglesTheChosenOne) {
    add({"one"});
    open();
    choose(0);
    QTest::keyClick(&list(), Qt::Key_Space);
    bench.settle();
    EXPECT_EQ(count(), "0/1 active");
    EXPECT_EQ(spoken(0), QStringLiteral("one, Any host, Direct, off"));
    QTest::keyClick(&list(), Qt::Key_Space);
    bench.settle();
    EXPECT_EQ(count(), "1/1 active");
    EXPECT_EQ(bench.routing.calls.size(), 4U);
}

TEST_F(Rules, ASearchFindsPartOfAHostButNoApplication) {
    AppRule rule = ruleNamed("Mail", {"imap.example.org"});
    rule.applications = {"thunderbird"};
    bench.store.addRule(rule);
    add({"Other"});
    open();
    auto& field = bench.find<QLineEdit>("rulesSearchField");
    EXPECT_EQ(field.placeholderText(), QStringLiteral("Search rules..."));
    field.setText(QStringLiteral("ample.o"));
    EXPECT_THAT(bench.rows("rulesList"), ElementsAre("Mail"));
    EXPECT_EQ(count(), "2/2 active");
    field.setText(QStringLiteral("thunderbird"));
    EXPECT_THAT(bench.rows("rulesList"), ElementsAre());
    const auto* page = static_cast<QStackedWidget*>(list().parentWidget())->currentWidget();
    EXPECT_EQ(page->findChild<QLabel*>(QStringLiteral("emptyTitle"))->text(), QStringLiteral("No Results"));
}

TEST_F(Rules, WithoutRulesItSaysHowToAddOne) {
    open();
    const auto* page = static_cast<QStackedWidget*>(list().parentWidget())->currentWidget();
    EXPECT_EQ(page->findChild<QLabel*>(QStringLiteral("emptyTitle"))->text(), QStringLiteral("No Rules"));
    EXPECT_EQ(page->findChild<QLabel*>(QStringLiteral("emptySubtitle"))->text(),
              QStringLiteral("Click + to add a routing rule"));
    EXPECT_EQ(count(), "0/0 active");
    EXPECT_EQ(panelLabel("emptyTitle"), "No Rule Selected");
    EXPECT_EQ(panelLabel("emptySubtitle"), "Select a rule from the list");
}

TEST_F(Rules, RowsAreSpokenWhole) {
    bench.store.addRule(ruleNamed("two", {"a.example", "b.example"}, RuleAction::block));
    bench.store.addRule(ruleNamed("blank", {"", ""}, RuleAction::tunnel));
    open();
    EXPECT_EQ(spoken(0), QStringLiteral("two, a.example +1 more, Block, on"));
    EXPECT_EQ(spoken(1), QStringLiteral("blank, Any host, Tunnel, on"));
}

TEST_F(Rules, DeletingTheChosenOneFallsBackToNone) {
    add({"one", "two"});
    open();
    choose(1);
    bench.find<QToolButton>("rulesRemoveButton").click();
    EXPECT_THAT(stored(), ElementsAre("one"));
    EXPECT_EQ(panelLabel("emptyTitle"), "No Rule Selected");
    EXPECT_FALSE(bench.find<QToolButton>("rulesRemoveButton").isEnabled());
    choosePoint(menu(0), 3);
    EXPECT_TRUE(bench.store.rules().empty());
}

TEST_F(Rules, EditAndAddOpenTheEditor) {
    add({"one"});
    open();
    choose(0);
    bench.find<QToolButton>("rulesAddButton").click();
    QTest::keyClick(&list(), Qt::Key_Return);
    panel().findChild<QPushButton*>(QStringLiteral("rulePanelEditButton"))->click();
    const std::optional rule(bench.store.rules()[0]);
    EXPECT_THAT(bench.editedRules, ElementsAre(std::nullopt, rule, rule));
}

TEST_F(Rules, AltAndArrowsMoveTheChosenOne) {
    add({"a", "b", "c"});
    open();
    choose(2);
    QTest::keyClick(&list(), Qt::Key_Up, Qt::AltModifier);
    EXPECT_THAT(stored(), ElementsAre("a", "c", "b"));
    EXPECT_EQ(list().selectedRow(), 1);
    QTest::keyClick(&list(), Qt::Key_Up, Qt::AltModifier);
    QTest::keyClick(&list(), Qt::Key_Up, Qt::AltModifier); // it is the first by now
    EXPECT_THAT(stored(), ElementsAre("c", "a", "b"));
    QTest::keyClick(&list(), Qt::Key_Down, Qt::AltModifier);
    EXPECT_THAT(stored(), ElementsAre("a", "c", "b"));
    EXPECT_THAT(bench.rows("rulesList"), ElementsAre("a", "c", "b"));
}

TEST_F(Rules, DraggingMovesARow) {
    add({"a", "b", "c"});
    open();
    drag(0, bench.placeOf("rulesList", 2).y() + 5);
    EXPECT_THAT(stored(), ElementsAre("b", "c", "a"));
    drag(2, 1);
    EXPECT_THAT(stored(), ElementsAre("a", "b", "c"));
    drag(1, bench.placeOf("rulesList", 1).y() + 4);
    EXPECT_THAT(stored(), ElementsAre("a", "b", "c"));
    EXPECT_EQ(list().selectedRow(), 1);
}

TEST_F(Rules, DraggingBelowTheListGoesToItsEnd) {
    add({"a", "b", "c"});
    open();
    drag(0, list().viewport()->height() + 100);
    EXPECT_THAT(stored(), ElementsAre("b", "c", "a"));
}

TEST_F(Rules, EscapeEndsADrag) {
    add({"a", "b"});
    open();
    auto* port = list().viewport();
    const QPoint from = bench.placeOf("rulesList", 0);
    QTest::mousePress(port, Qt::LeftButton, {}, from);
    const QPoint below = bench.placeOf("rulesList", 1) + QPoint(0, 9);
    QMouseEvent move(QEvent::MouseMove, below, port->mapToGlobal(below), Qt::NoButton, Qt::LeftButton, {});
    QApplication::sendEvent(port, &move);
    QTest::keyClick(&list(), Qt::Key_Escape);
    QTest::mouseRelease(port, Qt::LeftButton, {}, below);
    EXPECT_THAT(stored(), ElementsAre("a", "b"));
}

TEST_F(Rules, ARowHeldAtTheEdgeScrollsTheList) {
    add(std::vector<std::string>(100, "rule"));
    open();
    auto* port = list().viewport();
    const QPoint from = bench.placeOf("rulesList", 0);
    QTest::mousePress(port, Qt::LeftButton, {}, from);
    const QPoint edge(from.x(), port->height() - 2);
    QMouseEvent move(QEvent::MouseMove, edge, port->mapToGlobal(edge), Qt::NoButton, Qt::LeftButton, {});
    QApplication::sendEvent(port, &move);
    bench.dispatch.advance(platform::Duration(300));
    EXPECT_GT(list().verticalScrollBar()->value(), 0);
    QTest::keyClick(&list(), Qt::Key_Escape);
    const int stopped = list().verticalScrollBar()->value();
    bench.dispatch.advance(platform::Duration(300));
    EXPECT_EQ(list().verticalScrollBar()->value(), stopped);
    QTest::mouseRelease(port, Qt::LeftButton, {}, edge);
}

TEST_F(Rules, AChangeOfTheListEndsADrag) {
    add({"a", "b", "c"});
    open();
    auto* port = list().viewport();
    const QPoint from = bench.placeOf("rulesList", 0);
    QTest::mousePress(port, Qt::LeftButton, {}, from);
    const QPoint below = bench.placeOf("rulesList", 2);
    QMouseEvent move(QEvent::MouseMove, below, port->mapToGlobal(below), Qt::NoButton, Qt::LeftButton, {});
    QApplication::sendEvent(port, &move);
    bench.store.deleteRule(bench.store.rules()[0].id);
    QTest::mouseRelease(port, Qt::LeftButton, {}, below);
    EXPECT_THAT(stored(), ElementsAre("b", "c"));
}

TEST_F(Rules, ThePanelListsWhatTheRuleIsFor) {
    AppRule rule = ruleNamed("Mail", {"imap.example.org", "smtp.example.org"});
    rule.applications = {"thunderbird"};
    rule.isEnabled = false;
    bench.store.addRule(rule);
    open();
    choose(0);
    EXPECT_THAT(sections(), ElementsAre("Applications (1)", "Target Hosts (2)", "Target Ports (0)"));
    EXPECT_TRUE(panel().findChild<Capsule*>(QStringLiteral("disabledCapsule"))->isVisible());
    EXPECT_EQ(panel().findChild<Capsule*>(QStringLiteral("actionCapsule"))->text(), QStringLiteral("Direct"));
    EXPECT_EQ(panelLabel("whenNone"), "Any");
    const auto lists = panel().currentWidget()->findChildren<EntryListView*>();
    ASSERT_EQ(lists.size(), 2);
    EXPECT_EQ(lists[1]->model()->index(1, 0).data().toString(), QStringLiteral("smtp.example.org"));
    rule.isEnabled = true;
    rule.targetHosts.clear();
    rule.targetPorts = {"443"};
    bench.store.updateRule(rule);
    EXPECT_THAT(sections(), ElementsAre("Applications (1)", "Target Hosts (0)", "Target Ports (1)"));
    EXPECT_EQ(panelLabel("whenNone"), "Any host");
    EXPECT_FALSE(panel().findChild<Capsule*>(QStringLiteral("disabledCapsule"))->isVisible());
}

TEST_F(Rules, TheRoutingLineNamesTheProxyOrTheTunnel) {
    const TunnelNames tunnels{{support::Uuid::random(), "Staging"}};
    const ProxyConfig proxy = proxyNamed("Office");
    bench.store.addProxy(proxy);
    AppRule rule = ruleNamed("Mail", {}, RuleAction::proxy);
    rule.proxyID = proxy.id;
    rule.tunnelID = tunnels[0].id;
    bench.store.addRule(rule);
    open(tunnels);
    choose(0);
    EXPECT_EQ(panelLabel("lineText"), "Proxy");
    EXPECT_EQ(panelLabel("lineCaption"), "via Office");
    rule.action = RuleAction::tunnel;
    bench.store.updateRule(rule);
    EXPECT_EQ(panelLabel("lineText"), "Tunnel");
    EXPECT_EQ(panelLabel("lineCaption"), "via Staging");
    rule.action = RuleAction::block;
    bench.store.updateRule(rule);
    EXPECT_EQ(panelLabel("lineText"), "Block");
    EXPECT_EQ(panelLabel("lineCaption"), "(none)");
}

TEST_F(Rules, AProxyThatIsDeletedLeavesTheRoutingLineAlone) {
    const ProxyConfig proxy = proxyNamed("Office");
    bench.store.addProxy(proxy);
    AppRule rule = ruleNamed("Mail", {}, RuleAction::proxy);
    rule.proxyID = proxy.id;
    bench.store.addRule(rule);
    open();
    choose(0);
    ASSERT_EQ(panelLabel("lineCaption"), "via Office");
    bench.store.deleteProxy(proxy.id);
    EXPECT_EQ(panelLabel("lineText"), "Proxy");
    EXPECT_EQ(panelLabel("lineCaption"), "(none)");
}

TEST_F(Rules, TenThousandHostsInThePanelAreOneList) {
    bench.store.addRule(ruleNamed("many", std::vector<std::string>(10000, "host.example.com")));
    open();
    choose(0);
    EXPECT_THAT(sections(), ElementsAre("Applications (0)", "Target Hosts (10000)", "Target Ports (0)"));
    const auto lists = panel().currentWidget()->findChildren<EntryListView*>();
    ASSERT_EQ(lists.size(), 1);
    EXPECT_EQ(lists[0]->height(), 10000 * lists[0]->sizeHintForRow(0));
}

} // namespace
} // namespace fernwick::tests
