// The settings window as a whole: one at a time, its tabs, its keys, and when a page comes into being.
#include "SettingsBench.h"
#include "screens/settings/SettingsTabBar.h"

#include <QPointer>
#include <gtest/gtest.h>

namespace fernwick::tests {
namespace {

class Settings : public testing::Test {
protected:
    SettingsView& view() { return bench.window().view(); }
    SettingsTabBar& tabs() { return bench.find<SettingsTabBar>("settingsTabs"); }
    QWidget* focused() { return bench.window().focusWidget(); }

    void press(QKeyCombination keys) {
        QTest::keyClick(&bench.window(), keys.key(), keys.keyboardModifiers());
        bench.settle();
    }

    // The names of what the tab key leads to from the tabs, until it is back there.
    QStringList chain() {
        tabs().setFocus(Qt::TabFocusReason);
        QStringList names;
        constexpr int kMost = 20;
        while (names.size() < kMost) {
            QTest::keyClick(focused(), Qt::Key_Tab);
            if (focused() == &tabs()) {
                break;
            }
            names.append(focused()->objectName());
        }
        return names;
    }

    SettingsBench bench;
};

TEST_F(Settings, OpensOnTheFirstTabUnderItsTitle) {
    const auto& window = bench.open();
    EXPECT_EQ(window.windowTitle(), QStringLiteral("Settings"));
    EXPECT_EQ(window.minimumSize(), QSize(620, 500));
    EXPECT_TRUE(window.isWindow());
    EXPECT_EQ(window.windowType(), Qt::Window);
    EXPECT_TRUE(window.isVisible());
    EXPECT_EQ(view().selectedTab(), SettingsTab::general);
}

TEST_F(Settings, HasFiveTabsWithTheirRole) {
    bench.open();
    QStringList titles;
    auto* bar = QAccessible::queryAccessibleInterface(&tabs());
    for (int index = 0; index < tabs().count(); ++index) {
        titles.append(tabs().tabText(index));
        EXPECT_EQ(bar->child(index)->role(), QAccessible::PageTab);
        EXPECT_EQ(bar->child(index)->text(QAccessible::Name), tabs().tabText(index));
    }
    EXPECT_EQ(titles, QStringLiteral("General/Identity/Known Hosts/Tags/Sync").split(QLatin1Char('/')));
    EXPECT_EQ(tabs().accessibleName(), QStringLiteral("Settings"));
}

TEST_F(Settings, AnOpenWindowComesToTheFrontAsItIs) {
    auto& window = bench.open(SettingsTab::tags);
    window.showMinimized();
    bench.controller.show();
    EXPECT_EQ(&bench.window(), &window);
    EXPECT_FALSE(window.isMinimized());
    EXPECT_EQ(view().selectedTab(), SettingsTab::tags);
}

TEST_F(Settings, AClosedWindowIsForgotten) {
    const QPointer<SettingsWindow> first = &bench.open(SettingsTab::tags);
    press(Qt::CTRL | Qt::Key_W);
    EXPECT_EQ(bench.controller.window(), nullptr);
    bench.settle();
    EXPECT_TRUE(first.isNull());
    bench.controller.showUpdateOutcome("late"); // nobody is there
    bench.controller.show();
    EXPECT_EQ(view().selectedTab(), SettingsTab::general);
}

TEST_F(Settings, APageIsMadeWhenItsTabIsFirstShown) {
    bench.open();
    EXPECT_NE(view().page(SettingsTab::general), nullptr);
    EXPECT_EQ(view().page(SettingsTab::identity), nullptr);
    bench.turnTo(SettingsTab::identity);
    const auto* page = view().page(SettingsTab::identity);
    EXPECT_NE(page, nullptr);
    bench.turnTo(SettingsTab::general);
    bench.turnTo(SettingsTab::identity);
    EXPECT_EQ(view().page(SettingsTab::identity), page);
}

TEST_F(Settings, TheSyncPageIsAskedForOnceAndNotBefore) {
    bench.open();
    for (const auto tab : {SettingsTab::identity, SettingsTab::knownHosts, SettingsTab::tags}) {
        bench.turnTo(tab);
    }
    EXPECT_EQ(bench.syncPages, 0);
    bench.turnTo(SettingsTab::sync);
    bench.turnTo(SettingsTab::general);
    bench.turnTo(SettingsTab::sync);
    EXPECT_EQ(bench.syncPages, 1);
    EXPECT_TRUE(view().page(SettingsTab::sync)->isVisible());
}

TEST_F(Settings, WithoutASyncPageTheTabIsEmpty) {
    auto context = bench.context();
    context.makeSyncPage = nullptr;
    SettingsWindow window(context);
    window.view().select(SettingsTab::sync);
    EXPECT_NE(window.view().page(SettingsTab::sync), nullptr);
}

TEST_F(Settings, ArrowsAndPageKeysTurnTheTabs) {
    bench.open();
    tabs().setFocus(Qt::TabFocusReason);
    QTest::keyClick(&tabs(), Qt::Key_Right);
    EXPECT_EQ(view().selectedTab(), SettingsTab::identity);
    EXPECT_EQ(focused(), &tabs());
    press(Qt::CTRL | Qt::Key_PageDown);
    EXPECT_EQ(view().selectedTab(), SettingsTab::knownHosts);
    press(Qt::CTRL | Qt::Key_PageUp);
    press(Qt::CTRL | Qt::Key_PageUp);
    press(Qt::CTRL | Qt::Key_PageUp);
    EXPECT_EQ(view().selectedTab(), SettingsTab::sync);
}

TEST_F(Settings, TheKeyboardDoesNotStayInAPageThatHasGone) {
    bench.open();
    bench.find<QWidget>("defaultSSHPortField").setFocus();
    bench.turnTo(SettingsTab::tags);
    QTest::keyClick(focused(), Qt::Key_Tab);
    EXPECT_EQ(focused()->objectName(), QStringLiteral("tagList"));
}

TEST_F(Settings, TabLeadsThroughTheControlsOfGeneral) {
    bench.open();
    EXPECT_EQ(chain(), QStringLiteral("showAs:Menu bar icon/showStatusSwitch/launchAtLoginSwitch/"
                                      "connectOnLaunchSwitch/defaultSSHPortField/checkUpdateButton")
                           .split(QLatin1Char('/')));
}

TEST_F(Settings, TabLeadsThroughTheControlsOfIdentity) {
    bench.savePassphrase(bench.addKey("/k/id_rsa"), "x");
    bench.open(SettingsTab::identity);
    EXPECT_EQ(chain(), QStringLiteral("keyTable importKeyButton").split(QLatin1Char(' ')));
    bench.chooseRow("keyTable", 0);
    EXPECT_EQ(chain(), QStringLiteral("keyTable importKeyButton removeKeyButton revealButton "
                                      "changePassphraseButton removePassphraseButton")
                           .split(QLatin1Char(' ')));
}

TEST_F(Settings, TabLeadsThroughTheControlsOfTheOtherTabs) {
    bench.open(SettingsTab::knownHosts);
    EXPECT_EQ(
        chain(),
        QStringLiteral("reloadKnownHostsButton saveKnownHostsButton knownHostsEditor").split(QLatin1Char(' ')));
    bench.turnTo(SettingsTab::tags);
    bench.chooseRow("tagList", 1);
    EXPECT_EQ(chain(), QStringLiteral(
                           "tagList editTagButton deleteTagButton newTagColorWell newTagNameField addTagButton")
                           .split(QLatin1Char(' ')));
}

TEST_F(Settings, TheWindowTakesItsSheetAlong) {
    bench.addKey("/k/id_rsa");
    bench.open(SettingsTab::identity);
    bench.chooseRow("keyTable", 0);
    bench.click("setPassphraseButton");
    const QPointer<QDialog> sheet = &bench.find<QDialog>("passphraseSheet");
    EXPECT_EQ(sheet->windowModality(), Qt::WindowModal);
    bench.window().close();
    bench.settle();
    EXPECT_TRUE(sheet.isNull());
}

} // namespace
} // namespace fernwick::tests
