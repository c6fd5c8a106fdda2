// The sidebar as the window shows it: counts, search, tags, rows and their menu.
#include "Bench.h"
#include "screens/main/StatBadge.h"
#include "screens/main/TagFilterChip.h"
#include "screens/theme/TagColors.h"

#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QMenu>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>
#include <QToolButton>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace fernwick::tests {
namespace {

using testing::ElementsAre;

class Sidebar : public testing::Test {
protected:
    Sidebar() { bench.open(); }

    QListView& list() { return bench.find<QListView>("tunnelList"); }
    QLineEdit& search() { return bench.find<QLineEdit>("sidebarSearchField"); }
    QString value(const char* badge) { return bench.find<StatBadge>(badge).value(); }
    QString emptyText() { return bench.find<QLabel>("tunnelListEmptyText").text(); }

    std::vector<std::string> rows() {
        std::vector<std::string> names;
        for (int row = 0; row < list().model()->rowCount(); ++row) {
            names.push_back(list().model()->index(row, 0).data().toString().toStdString());
        }
        return names;
    }

    void type(const char* text) {
        search().clear();
        QTest::keyClicks(&search(), QString::fromUtf8(text));
        bench.settle();
    }

    void choose(int row) {
        list().setCurrentIndex(list().model()->index(row, 0));
        bench.settle();
    }

    TagFilterChip& chip(const char* name) {
        return bench.find<TagFilterChip>((std::string("tagChip:") + name).c_str());
    }

    void click(const char* name) {
        chip(name).click();
        bench.settle();
        QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    // The menu of a row, opened as the keyboard opens it.
    QMenu& menu(int row) {
        choose(row);
        QContextMenuEvent event(QContextMenuEvent::Keyboard, QPoint(), QPoint());
        QApplication::sendEvent(&list(), &event);
        auto menus = bench.window->findChildren<QMenu*>(QStringLiteral("tunnelMenu"));
        return *menus.last();
    }

    static QStringList texts(const QMenu& menu) {
        QStringList texts;
        for (const QAction* action : menu.actions()) {
            texts.append(action->isSeparator() ? QStringLiteral("-") : action->text());
        }
        return texts;
    }

    Bench bench;
};

TEST_F(Sidebar, FindsAUserWhateverItsCase) {
    bench.add(tunnelNamed("web", "Ubuntu"));
    bench.add(tunnelNamed("db", "root"));
    type("ubuntu");
    EXPECT_THAT(rows(), ElementsAre("web"));
    EXPECT_EQ(bench.state().searchText, "ubuntu");
}

TEST_F(Sidebar, ASearchWithoutHitsSaysNoResults) {
    bench.add(tunnelNamed("web"));
    type("8080");
    EXPECT_TRUE(bench.find<QLabel>("tunnelListEmptyText").isVisible());
    EXPECT_FALSE(list().isVisible());
    EXPECT_EQ(emptyText(), QStringLiteral("No results"));
    EXPECT_EQ(value("totalBadge"), QStringLiteral("1"));
}

TEST_F(Sidebar, AnEmptyCatalogueSaysNoTunnelsYet) {
    EXPECT_TRUE(bench.find<QLabel>("tunnelListEmptyText").isVisible());
    EXPECT_EQ(emptyText(), QStringLiteral("No tunnels yet"));
    EXPECT_EQ(value("totalBadge"), QStringLiteral("0"));
}

TEST_F(Sidebar, ATagWithoutTunnelsSaysNoTunnelsYet) {
    bench.add(tunnelNamed("web"));
    click("Staging");
    EXPECT_TRUE(rows().empty());
    EXPECT_EQ(emptyText(), QStringLiteral("No tunnels yet"));
    EXPECT_EQ(value("totalBadge"), QStringLiteral("1"));
}

TEST_F(Sidebar, TheClearButtonShowsWithTextAndEmptiesIt) {
    auto& clear = bench.find<QToolButton>("clearSearchButton");
    EXPECT_FALSE(clear.isVisible());
    type("x");
    EXPECT_TRUE(clear.isVisible());
    clear.click();
    bench.settle();
    EXPECT_TRUE(search().text().isEmpty());
    EXPECT_EQ(bench.state().searchText, "");
    EXPECT_FALSE(clear.isVisible());
    EXPECT_EQ(search().placeholderText(), QStringLiteral("Search tunnels..."));
}

TEST_F(Sidebar, TheOnlyTunnelIsChosenByAnArrowKey) {
    const auto only = bench.add(tunnelNamed("only"));
    for (const auto key : {Qt::Key_Down, Qt::Key_Up, Qt::Key_Home, Qt::Key_End}) {
        list().setFocus(Qt::TabFocusReason);
        list().selectionModel()->clear();
        EXPECT_FALSE(bench.state().selectedTunnelID);
        QTest::keyClick(&list(), key);
        EXPECT_EQ(bench.state().selectedTunnelID, only.id) << key;
    }
}

TEST_F(Sidebar, ConnectingCountsAsActiveAndOffersStop) {
    const auto tunnel = bench.add(tunnelNamed("web"));
    bench.manager.connect(tunnel, bench.store);
    bench.settle();
    ASSERT_EQ(bench.manager.status(tunnel.id), TunnelStatus::connecting());
    EXPECT_EQ(value("activeBadge"), QStringLiteral("1"));
    EXPECT_EQ(texts(menu(0)),
              (QStringList{QStringLiteral("Stop Tunnel"), QStringLiteral("-"), QStringLiteral("Duplicate"),
                           QStringLiteral("-"), QStringLiteral("Delete")}));
}

TEST_F(Sidebar, TheMenuStartsAndStops) {
    const auto tunnel = bench.add(tunnelNamed("web"));
    auto& start = menu(0);
    EXPECT_EQ(texts(start).first(), QStringLiteral("Start Tunnel"));
    start.actions().first()->trigger();
    bench.settle();
    EXPECT_TRUE(bench.manager.isActive(tunnel.id));
    menu(0).actions().first()->trigger();
    bench.settle();
    EXPECT_FALSE(bench.manager.isActive(tunnel.id));
    EXPECT_EQ(value("activeBadge"), QStringLiteral("0"));
}

TEST_F(Sidebar, DuplicatingTwiceGivesTwoOfTheSameName) {
    bench.add(tunnelNamed("Prod"));
    bench.add(tunnelNamed("Other"));
    const auto selected = bench.store.tunnels().front().id;
    menu(0).actions().at(2)->trigger();
    menu(0).actions().at(2)->trigger();
    bench.settle();
    EXPECT_THAT(rows(), ElementsAre("Prod", "Other", "Prod Copy", "Prod Copy"));
    EXPECT_EQ(bench.state().selectedTunnelID, selected);
}

TEST_F(Sidebar, AChipSelectsAndASecondClickClears) {
    Tunnel tagged = tunnelNamed("tagged");
    tagged.tagIDs = {bench.tags.tags()[0].id};
    bench.add(tagged);
    bench.add(tunnelNamed("plain"));
    EXPECT_TRUE(chip("All").isChecked());
    click("Production");
    EXPECT_EQ(bench.state().selectedTag, bench.tags.tags()[0]);
    EXPECT_TRUE(chip("Production").isChecked());
    EXPECT_FALSE(chip("All").isChecked());
    EXPECT_THAT(rows(), ElementsAre("tagged"));
    click("Production");
    EXPECT_EQ(bench.state().selectedTag, std::nullopt);
    EXPECT_THAT(rows(), ElementsAre("tagged", "plain"));
}

TEST_F(Sidebar, AnotherChipTakesOverAndAllClears) {
    click("Production");
    click("Database");
    EXPECT_EQ(bench.state().selectedTag, bench.tags.tags()[3]);
    click("All");
    EXPECT_EQ(bench.state().selectedTag, std::nullopt);
}

TEST_F(Sidebar, ChipsFollowTheTagsAndTheirColours) {
    const Palette& colors = bench.theme.colors();
    EXPECT_EQ(chip("All").color(), colors.blue);
    EXPECT_EQ(chip("Production").color(), tagColor("#FF453A", colors));
    bench.tags.tags() = {{support::Uuid::random(), "Only", "zz"}};
    bench.tags.save();
    bench.settle();
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(chip("Only").color(), colors.blue);
    EXPECT_EQ(bench.window->findChildren<QWidget*>(QRegularExpression(QStringLiteral("^tagChip:"))).size(), 2);
}

TEST_F(Sidebar, WithoutTagsThereIsNoStrip) {
    EXPECT_TRUE(bench.find<QWidget>("tagStrip").isVisible());
    bench.tags.tags().clear();
    bench.tags.save();
    bench.settle();
    EXPECT_FALSE(bench.find<QWidget>("tagStrip").isVisible());
}

TEST_F(Sidebar, ABurstOfStatusesIsShownInOneGo) {
    std::vector<Tunnel> tunnels;
    for (int number = 0; number < 200; ++number) {
        tunnels.push_back(tunnelNamed("tunnel " + std::to_string(number)));
        bench.store.add(tunnels.back());
    }
    bench.settle();
    const QSignalSpy changed(list().model(), &QAbstractItemModel::dataChanged);
    for (int round = 0; round < 3; ++round) {
        for (const auto& tunnel : tunnels) {
            bench.manager.statusChanged.emit(tunnel.id);
        }
    }
    EXPECT_EQ(changed.count(), 0);
    bench.settle();
    EXPECT_EQ(changed.count(), 200);
}

TEST_F(Sidebar, AStatusLeavesScrollPositionAndSelectionAlone) {
    for (int number = 0; number < 100; ++number) {
        bench.store.add(tunnelNamed("tunnel " + std::to_string(number)));
    }
    bench.settle();
    choose(50);
    const int scrolled = list().visualRect(list().model()->index(50, 0)).top();
    bench.connected(bench.store.tunnels()[50]);
    EXPECT_EQ(list().visualRect(list().model()->index(50, 0)).top(), scrolled);
    EXPECT_EQ(list().currentIndex().row(), 50);
}

TEST_F(Sidebar, ButtonsSayWhatTheyDo) {
    auto& add = bench.find<QToolButton>("addTunnelButton");
    auto& rules = bench.find<QToolButton>("proxiesAndRulesButton");
    EXPECT_EQ(add.toolTip(), QStringLiteral("Add new tunnel"));
    EXPECT_EQ(add.accessibleName(), QStringLiteral("Add new tunnel"));
    EXPECT_EQ(rules.toolTip(), QStringLiteral("Proxies & Rules"));
    const auto tunnel = bench.add(tunnelNamed("web"));
    rules.click();
    EXPECT_THAT(bench.proxyRules, ElementsAre(ElementsAre(std::pair(tunnel.id, std::string("web")))));
}

TEST_F(Sidebar, TabGoesThroughItFromTheTopDown) {
    bench.add(tunnelNamed("one"));
    bench.tags.tags().push_back(
        {support::Uuid::random(), "Later", "#FF0000"}); // its chip is made after the list
    bench.tags.save();
    bench.settle();
    auto* first = &bench.find<QWidget>("proxiesAndRulesButton");
    first->setFocus(Qt::TabFocusReason);
    QStringList reached;
    while (reached.size() < 20 && QApplication::focusWidget() != &list()) {
        reached.append(QApplication::focusWidget()->objectName());
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    }
    ASSERT_GE(reached.size(), 5);
    EXPECT_EQ(reached.mid(0, 4).join(QLatin1Char('|')).toStdString(),
              "proxiesAndRulesButton|addTunnelButton|sidebarSearchField|tagChip:All");
    EXPECT_EQ(reached.last(), QStringLiteral("tagChip:Later"));
}

TEST_F(Sidebar, ATypedSearchSurvivesAChangeOfTheCatalogue) {
    bench.add(tunnelNamed("web"));
    type("we");
    bench.add(tunnelNamed("western"));
    bench.add(tunnelNamed("db"));
    EXPECT_EQ(search().text(), QStringLiteral("we"));
    EXPECT_THAT(rows(), ElementsAre("web", "western"));
}

} // namespace
} // namespace fernwick::tests
