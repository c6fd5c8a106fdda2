// The icon in the menu bar, on a desktop whose tray comes when the test says so.
#include "shell/MenuBarExtra.h"

#include "shell/MenuBarExtraWindow.h"
#include "support/FakeClock.h"
#include "support/FakeDispatch.h"
#include "support/FakeHostEnvironment.h"
#include "support/FakeProcesses.h"
#include "support/FakeTrayHost.h"
#include "support/FakeUserDefaults.h"
#include "support/QuietPlatform.h"

#include <QApplication>
#include <QTest>
#include <gtest/gtest.h>

namespace fernwick {
namespace {

using namespace std::chrono_literals;

class MenuBarIcon : public testing::Test {
protected:
    void start() {
        extra.start();
        dispatch.advance(MenuBarExtra::kStartDelay);
    }

    void startWithTray() {
        start();
        tray.appeared.emit();
    }

    void click(QSystemTrayIcon::ActivationReason reason = QSystemTrayIcon::Trigger) const {
        Q_EMIT extra.icon()->activated(reason);
    }

    [[nodiscard]] bool isOpen() const { return extra.window() != nullptr && extra.window()->isVisible(); }

    fakes::FakeDispatch dispatch;
    fakes::FakeClock clock{dispatch};
    fakes::FakeUserDefaults defaults;
    fakes::FakeHostEnvironment host;
    fakes::FakeProcesses processes{dispatch};
    NoRouting routing;
    support::NotificationCenter notifications;
    TunnelStore store{defaults, clock};
    fakes::QuietPlatform platform;
    TunnelManager tunnels{
        platform.services(dispatch, clock, processes, host, defaults, notifications, routing)};
    Theme theme{*qApp, Appearance::light};
    fakes::FakeTrayHost tray;
    int opened = 0;
    int quits = 0;
    MenuBarExtra extra{{theme,
                        store,
                        tunnels,
                        dispatch,
                        {.openProxyRules = [](const TunnelNames& /*names*/) {},
                         .openMainWindow = [this] { ++opened; },
                         .openSettings = nullptr,
                         .quit = [this] { ++quits; }}},
                       tray};
};

TEST_F(MenuBarIcon, LooksForATrayWhenTheMainWindowHasComeUp) {
    extra.start();
    dispatch.advance(199ms);
    EXPECT_FALSE(tray.started);
    dispatch.advance(1ms);
    EXPECT_TRUE(tray.started);
    EXPECT_EQ(extra.icon(), nullptr);
}

TEST_F(MenuBarIcon, WithoutATraySaysSoOnce) {
    testing::internal::CaptureStderr();
    start();
    tray.absent.emit();
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "Fernwick: this desktop has no tray for the icon; it will show when there is one.\n");
    EXPECT_EQ(extra.icon(), nullptr);
}

TEST_F(MenuBarIcon, ATrayThatComesLaterGetsTheIcon) {
    start();
    dispatch.advance(1h);
    tray.appeared.emit();
    ASSERT_NE(extra.icon(), nullptr);
    EXPECT_TRUE(extra.icon()->isVisible());
    EXPECT_EQ(extra.icon()->toolTip(), QStringLiteral("No active tunnels"));
}

TEST_F(MenuBarIcon, ToolTipFollowsTheTunnels) {
    startWithTray();
    tunnels.connect(store.tunnels().front(), store);
    dispatch.runAll();
    EXPECT_EQ(extra.icon()->toolTip(), QStringLiteral("All tunnels connected"));
    for (const int side : {16, 22, 32}) {
        EXPECT_TRUE(extra.icon()->icon().availableSizes().contains(QSize(side, side))) << side;
    }
}

TEST_F(MenuBarIcon, NothingOfThePopoverIsBuiltBeforeTheFirstClick) {
    startWithTray();
    EXPECT_EQ(extra.window(), nullptr);
    click();
    EXPECT_TRUE(isOpen());
}

TEST_F(MenuBarIcon, AClickOnTheIconClosesWhatItOpened) {
    startWithTray();
    click();
    click();
    EXPECT_FALSE(isOpen());
    click();
    EXPECT_TRUE(isOpen());
}

TEST_F(MenuBarIcon, AMiddleClickOpensNothing) {
    startWithTray();
    click(QSystemTrayIcon::MiddleClick);
    click(QSystemTrayIcon::Context);
    EXPECT_FALSE(isOpen());
}

TEST_F(MenuBarIcon, EscapeCloses) {
    startWithTray();
    click();
    ASSERT_TRUE(QTest::qWaitForWindowActive(extra.window()));
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
    EXPECT_FALSE(isOpen());
}

// The click that takes the keyboard away may be the one on the icon.
TEST_F(MenuBarIcon, LosingTheKeyboardClosesAndTheSameClickDoesNotReopen) {
    startWithTray();
    click();
    ASSERT_TRUE(QTest::qWaitForWindowActive(extra.window()));
    QWidget other;
    other.show();
    other.activateWindow();
    ASSERT_TRUE(QTest::qWaitFor([this] { return !isOpen(); }));
    click();
    EXPECT_FALSE(isOpen());
    dispatch.advance(MenuBarExtra::kReopenDelay);
    click();
    EXPECT_TRUE(isOpen());
}

TEST_F(MenuBarIcon, AnEntryClosesAndOpensTheMainWindowAfterwards) {
    startWithTray();
    click();
    extra.window()->findChild<QAbstractButton*>(QStringLiteral("openMainWindowEntry"))->click();
    EXPECT_FALSE(isOpen());
    EXPECT_EQ(opened, 0);
    dispatch.advance(150ms);
    EXPECT_EQ(opened, 1);
}

TEST_F(MenuBarIcon, TheMenuHasTheFootersEntries) {
    startWithTray();
    QStringList texts;
    for (const QAction* action : extra.icon()->contextMenu()->actions()) {
        texts.append(action->isSeparator() ? QStringLiteral("-") : action->text());
    }
    EXPECT_EQ(texts, (QStringList{QStringLiteral("Proxies && Rules..."), QStringLiteral("Open Main Window"),
                                  QStringLiteral("-"), QStringLiteral("Quit Fernwick")}));
    extra.icon()->contextMenu()->actions().last()->trigger();
    EXPECT_EQ(quits, 1);
}

TEST_F(MenuBarIcon, ThePopoverStaysInsideTheScreen) {
    startWithTray();
    QCursor::setPos(QGuiApplication::primaryScreen()->geometry().bottomRight());
    click();
    EXPECT_TRUE(QGuiApplication::primaryScreen()->availableGeometry().contains(extra.window()->geometry()));
}

TEST_F(MenuBarIcon, AtTheEndNothingIsLeftAndNothingComesBack) {
    startWithTray();
    click();
    extra.remove();
    EXPECT_EQ(extra.icon(), nullptr);
    EXPECT_EQ(extra.window(), nullptr);
    tray.appeared.emit();
    EXPECT_EQ(extra.icon(), nullptr);
}

TEST_F(MenuBarIcon, AnEndBeforeTheFirstLookIsQuiet) {
    extra.start();
    extra.remove();
    dispatch.advance(1h);
    EXPECT_FALSE(tray.started);
}

} // namespace
} // namespace fernwick
