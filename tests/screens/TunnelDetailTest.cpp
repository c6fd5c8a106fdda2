// The detail column: status bar and log.
#include "DetailBench.h"
#include "screens/detail/ConnectButton.h"
#include "screens/detail/LogListModel.h"
#include "screens/detail/LogListView.h"
#include "support/RelativeDate.h"

#include <QCheckBox>
#include <QClipboard>
#include <QDateTime>
#include <QLabel>
#include <QListView>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <gtest/gtest.h>

namespace fernwick::tests {
namespace {

class Detail : public DetailTest {
protected:
    void openLogs() { turnTo("logsTabButton"); }

    TabButton& tab(const char* name) { return bench.find<TabButton>(name); }
    QCheckBox& autoScroll() { return bench.find<QCheckBox>("autoScrollCheckBox"); }
    bool shows(const char* name) {
        const auto* widget = bench.window->findChild<QWidget*>(QString::fromLatin1(name));
        return widget != nullptr && widget->isVisible();
    }

    ConnectButton& button() { return bench.find<ConnectButton>("connectButton"); }
    QString statusText() { return bench.find<QLabel>("statusText").text(); }
    QColor statusInk() { return bench.find<QLabel>("statusText").palette().color(QPalette::WindowText); }
    LogListView& log() { return bench.find<LogListView>("logList"); }
    QString count() { return bench.find<QLabel>("logCount").text(); }

    void addLines(int lines) {
        for (int line = 0; line < lines; ++line) {
            bench.manager.logs().append(LogLevel::info, "line " + std::to_string(line), tunnel.id);
        }
    }
};

TEST_F(Detail, AnUntouchedTunnelIsIdle) {
    EXPECT_EQ(statusText(), QStringLiteral("Idle"));
    EXPECT_EQ(statusInk(), bench.theme.colors().gray);
    EXPECT_EQ(button().text(), QStringLiteral("Connect"));
    EXPECT_FALSE(button().isSpinning());
}

TEST_F(Detail, TheButtonConnectsAndStops) {
    button().click();
    bench.settle();
    EXPECT_EQ(statusText(), QStringLiteral("Connecting..."));
    EXPECT_EQ(statusInk(), bench.theme.colors().orange);
    EXPECT_EQ(button().text(), QStringLiteral("Stop"));
    bench.dispatch.advance(TunnelManager::kConfirmDelay);
    bench.settle();
    EXPECT_EQ(statusText(), QStringLiteral("Connected"));
    EXPECT_EQ(statusInk(), bench.theme.colors().green);
    button().click();
    bench.settle();
    EXPECT_EQ(statusText(), QStringLiteral("Idle"));
    EXPECT_EQ(button().text(), QStringLiteral("Connect"));
}

TEST_F(Detail, AnErrorShowsItsMessage) {
    bench.processes.failNextLaunch({2, "No such file or directory"});
    button().click();
    bench.settle();
    EXPECT_EQ(statusText(), QStringLiteral("Error: No such file or directory"));
    EXPECT_EQ(statusInk(), bench.theme.colors().red);
    EXPECT_EQ(button().text(), QStringLiteral("Connect"));
}

TEST_F(Detail, TheSpinnerTurnsOnlyWhileItCanBeSeen) {
    button().click();
    bench.settle();
    EXPECT_TRUE(button().isSpinning());
    bench.window->hide();
    EXPECT_FALSE(button().isSpinning());
    bench.window->show();
    EXPECT_TRUE(button().isSpinning());
    bench.dispatch.advance(TunnelManager::kConfirmDelay);
    bench.settle();
    EXPECT_FALSE(button().isSpinning());
}

TEST_F(Detail, PillsShowThePortsThatAreThere) {
    EXPECT_TRUE(bench.find<QWidget>("localPortPill").isVisible());
    EXPECT_EQ(bench.find<QWidget>("localPortPill").findChild<QLabel*>()->text(), QStringLiteral(":8080"));
    EXPECT_FALSE(bench.find<QWidget>("remotePortPill").isVisible());
    Tunnel edited = tunnel;
    edited.localPort = "";
    edited.remotePort = "80";
    bench.store.update(edited);
    bench.settle();
    EXPECT_FALSE(bench.find<QWidget>("localPortPill").isVisible());
    EXPECT_TRUE(bench.find<QWidget>("remotePortPill").isVisible());
}

TEST_F(Detail, AnEmptyLogSaysSo) {
    openLogs();
    EXPECT_TRUE(bench.find<QLabel>("logEmptyText").isVisible());
    EXPECT_EQ(bench.find<QLabel>("logEmptyText").text(),
              QStringLiteral("No logs yet. Connect to start seeing output."));
    EXPECT_EQ(count(), QStringLiteral("0 entries"));
    addLines(1);
    bench.settle();
    EXPECT_FALSE(bench.find<QLabel>("logEmptyText").isVisible());
    EXPECT_TRUE(log().isVisible());
    EXPECT_EQ(count(), QStringLiteral("1 entries"));
}

TEST_F(Detail, ABurstOfLinesIsShownInOneGo) {
    openLogs();
    const QSignalSpy inserted(log().model(), &QAbstractItemModel::rowsInserted);
    addLines(500);
    EXPECT_EQ(inserted.count(), 0);
    bench.settle();
    EXPECT_EQ(inserted.count(), 1);
    EXPECT_EQ(log().model()->rowCount(), 500);
}

TEST_F(Detail, TheOldestLinesGo) {
    openLogs();
    addLines(500);
    bench.settle();
    addLines(3);
    bench.settle();
    EXPECT_EQ(log().model()->rowCount(), 500);
    EXPECT_EQ(log().model()->index(0, 0).data().toString(), QStringLiteral("line 3"));
    EXPECT_EQ(log().model()->index(499, 0).data().toString(), QStringLiteral("line 2"));
}

TEST_F(Detail, LinesOfOtherTunnelsAreNotShown) {
    openLogs();
    const auto other = bench.add(tunnelNamed("other"));
    bench.manager.logs().append(LogLevel::info, "elsewhere", other.id);
    bench.settle();
    EXPECT_EQ(count(), QStringLiteral("0 entries"));
}

TEST_F(Detail, TheListFollowsNewLinesUntilItIsToldNotTo) {
    openLogs();
    addLines(200);
    bench.settle();
    auto* bar = log().verticalScrollBar();
    EXPECT_TRUE(QTest::qWaitFor([&] { return bar->maximum() > 0 && bar->value() == bar->maximum(); }));
    addLines(50);
    bench.settle();
    EXPECT_TRUE(QTest::qWaitFor([&] { return bar->value() == bar->maximum(); }));
    bench.find<QCheckBox>("autoScrollCheckBox").setChecked(false);
    bar->setValue(0);
    addLines(50);
    bench.settle();
    EXPECT_EQ(bar->value(), 0);
    EXPECT_EQ(count(), QStringLiteral("300 entries"));
}

TEST_F(Detail, ClearEmptiesTheLog) {
    openLogs();
    addLines(3);
    bench.settle();
    bench.find<QPushButton>("logClearButton").click();
    bench.settle();
    EXPECT_TRUE(bench.manager.logs().lines(tunnel.id).empty());
    EXPECT_EQ(count(), QStringLiteral("0 entries"));
    EXPECT_TRUE(bench.find<QLabel>("logEmptyText").isVisible());
}

TEST_F(Detail, ChosenLinesAreCopiedWhole) {
    openLogs();
    bench.manager.logs().append(LogLevel::info, "first", tunnel.id);
    bench.manager.logs().append(LogLevel::error, std::string(9000, 'x'), tunnel.id);
    bench.settle();
    log().selectAll();
    QTest::keyClick(&log(), Qt::Key_C, Qt::ControlModifier);
    const QStringList lines = QApplication::clipboard()->text().split(QLatin1Char('\n'));
    ASSERT_EQ(lines.size(), 2);
    const auto now =
        QDateTime::fromSecsSinceEpoch(static_cast<qint64>(bench.clock.now().secondsSinceUnixEpoch()));
    EXPECT_EQ(lines[0], now.toString(QStringLiteral("HH:mm:ss")) + QStringLiteral(" first"));
    EXPECT_EQ(lines[1].size(), 9000 + 9);
}

TEST_F(Detail, LongLinesTakeMoreRoomAndNarrowColumnsToo) {
    openLogs();
    bench.manager.logs().append(LogLevel::info, "short", tunnel.id);
    bench.manager.logs().append(LogLevel::info, std::string(400, 'w'), tunnel.id);
    bench.settle();
    const auto height = [&](int row) { return log().visualRect(log().model()->index(row, 0)).height(); };
    EXPECT_GT(height(1), 2 * height(0));
    const int before = height(1);
    bench.window->resize(1600, 700);
    bench.settle();
    EXPECT_TRUE(QTest::qWaitFor([&] { return height(1) < before; }));
}

TEST_F(Detail, ANameThatWouldHangThePainterIsCut) {
    Tunnel edited = tunnel;
    edited.name = std::string(10000, 'W') + "\n\0x";
    edited.host = std::string(100000, 'h');
    bench.store.update(edited);
    bench.settle();
    EXPECT_FALSE(bench.window->grab().isNull());
    EXPECT_LT(bench.find<QLabel>("detailName").text().size(), 300);
    EXPECT_LT(bench.find<QLabel>("detailLogin").text().size(), 600);
}

TEST_F(Detail, OpensOnTheConfigurationAndMakesTheOtherTabsWhenTheyAreWanted) {
    EXPECT_EQ(tab("configurationTabButton").text(), QStringLiteral("Configuration"));
    EXPECT_EQ(tab("advancedTabButton").text(), QStringLiteral("Advanced"));
    EXPECT_EQ(tab("logsTabButton").text(), QStringLiteral("Logs"));
    EXPECT_TRUE(shows("configTab"));
    EXPECT_TRUE(tab("configurationTabButton").isChecked());
    EXPECT_EQ(bench.window->findChild<QWidget*>(QStringLiteral("advancedTab")), nullptr);
    EXPECT_EQ(bench.window->findChild<QWidget*>(QStringLiteral("logsTab")), nullptr);
    turnTo("advancedTabButton");
    EXPECT_TRUE(shows("advancedTab"));
    EXPECT_FALSE(shows("configTab"));
    openLogs();
    EXPECT_TRUE(shows("logsTab"));
    EXPECT_FALSE(shows("advancedTab"));
}

TEST_F(Detail, AnotherTunnelKeepsTheTab) {
    Tunnel other = tunnelNamed("other");
    other.keepAliveInterval = 200;
    bench.add(other);
    turnTo("advancedTabButton");
    choose(1);
    EXPECT_TRUE(shows("advancedTab"));
    EXPECT_EQ(label("keepAliveText"), QStringLiteral("200s"));
    turnTo("configurationTabButton");
    EXPECT_EQ(field("configNameField").text(), QStringLiteral("other"));
}

TEST_F(Detail, TabsAreTurnedByTheArrowKeys) {
    tab("configurationTabButton").setFocus(Qt::TabFocusReason);
    QTest::keyClick(&tab("configurationTabButton"), Qt::Key_Right);
    EXPECT_TRUE(shows("advancedTab"));
    QTest::keyClick(&tab("advancedTabButton"), Qt::Key_Right);
    EXPECT_TRUE(shows("logsTab"));
}

TEST_F(Detail, TheBadgeCountsErrorsAlone) {
    auto& logs = bench.manager.logs();
    for (const auto level : {LogLevel::info, LogLevel::success, LogLevel::warning}) {
        logs.append(level, "fine", tunnel.id);
    }
    bench.settle();
    EXPECT_EQ(tab("logsTabButton").badge(), 0);
    const int without = tab("logsTabButton").sizeHint().width();
    logs.append(LogLevel::error, "bad", tunnel.id);
    logs.append(LogLevel::error, "worse", tunnel.id);
    bench.settle();
    EXPECT_EQ(tab("logsTabButton").badge(), 2);
    EXPECT_GT(tab("logsTabButton").sizeHint().width(), without);
    openLogs();
    bench.find<QPushButton>("logClearButton").click();
    bench.settle();
    EXPECT_EQ(tab("logsTabButton").badge(), 0);
    EXPECT_EQ(tab("logsTabButton").sizeHint().width(), without);
}

TEST_F(Detail, TheBadgeIsOfTheTunnelOnShow) {
    const auto other = bench.add(tunnelNamed("other"));
    bench.manager.logs().append(LogLevel::error, "bad", other.id);
    bench.settle();
    EXPECT_EQ(tab("logsTabButton").badge(), 0);
    choose(1);
    EXPECT_EQ(tab("logsTabButton").badge(), 1);
    choose(0);
    EXPECT_EQ(tab("logsTabButton").badge(), 0);
}

TEST_F(Detail, AutoScrollStartsOnWheneverTheTabIsOpened) {
    openLogs();
    EXPECT_TRUE(autoScroll().isChecked());
    EXPECT_EQ(autoScroll().text(), QStringLiteral("Auto-scroll"));
    autoScroll().click();
    bench.add(tunnelNamed("other"));
    choose(1);
    EXPECT_FALSE(autoScroll().isChecked()); // the tab stayed open
    turnTo("configurationTabButton");
    openLogs();
    EXPECT_TRUE(autoScroll().isChecked());
}

TEST_F(Detail, LinesThatCameWhileTheLogWasHiddenAreThereWhenItOpens) {
    openLogs();
    turnTo("configurationTabButton");
    addLines(200);
    bench.settle();
    openLogs();
    EXPECT_EQ(count(), QStringLiteral("200 entries"));
    auto* bar = log().verticalScrollBar();
    EXPECT_TRUE(QTest::qWaitFor([&] { return bar->maximum() > 0 && bar->value() == bar->maximum(); }));
}

TEST_F(Detail, ALogThatOpensForTheFirstTimeShowsItsEnd) {
    addLines(200);
    openLogs();
    auto* bar = log().verticalScrollBar();
    EXPECT_TRUE(QTest::qWaitFor([&] { return bar->maximum() > 0 && bar->value() == bar->maximum(); }));
}

TEST_F(Detail, AnotherTunnelsLogReplacesTheFirst) {
    const auto other = bench.add(tunnelNamed("other"));
    addLines(3);
    bench.manager.logs().append(LogLevel::info, "elsewhere", other.id);
    openLogs();
    choose(1);
    EXPECT_EQ(count(), QStringLiteral("1 entries"));
    EXPECT_EQ(log().model()->index(0, 0).data().toString(), QStringLiteral("elsewhere"));
}

TEST_F(Detail, TheLastConnectionIsToldRelativeToNow) {
    EXPECT_FALSE(shows("lastConnected"));
    const double now = bench.clock.now().secondsSinceReference;
    edit([&](Tunnel& changed) { changed.lastConnectedAt = support::Date{now - 300}; });
    EXPECT_TRUE(shows("lastConnected"));
    support::RelativeDateFormatter formatter;
    const std::string ago = formatter.text({now - 300}, bench.clock.now());
    EXPECT_EQ(label("lastConnected").toStdString(), "Last: " + ago);
    edit([](Tunnel& changed) { changed.lastConnectedAt.reset(); });
    EXPECT_FALSE(shows("lastConnected"));
}

TEST_F(Detail, TheLastConnectionIsToldAnewWithoutATimer) {
    const double now = bench.clock.now().secondsSinceReference;
    edit([&](Tunnel& changed) { changed.lastConnectedAt = support::Date{now}; });
    const QString before = label("lastConnected");
    bench.dispatch.advance(Coalescer::kInterval);
    EXPECT_EQ(bench.dispatch.pendingTimers() + bench.dispatch.pendingDelayed(), 0U);
    bench.dispatch.advance(std::chrono::minutes(5));
    turnTo("advancedTabButton");
    EXPECT_NE(label("lastConnected"), before);
}

TEST_F(Detail, ConnectTakesTheTunnelAsItWasJustTyped) {
    field("configHostField").setText(QStringLiteral("typed.example.com"));
    button().click();
    bench.settle();
    ASSERT_FALSE(bench.processes.launched().empty());
    EXPECT_EQ(bench.processes.last().request().arguments.back(), "ubuntu@typed.example.com");
}

} // namespace
} // namespace fernwick::tests
