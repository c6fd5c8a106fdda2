#include "SyncBench.h"

#include <QAccessible>
#include <QPushButton>
#include <gtest/gtest.h>

#include <algorithm>
#include <set>

namespace fernwick::tests {
namespace {

// What is written on the page, in labels and on buttons.
std::set<std::string> textsOf(const QWidget& page) {
    std::set<std::string> texts;
    for (const auto* label : page.findChildren<QLabel*>()) {
        texts.insert(label->text().toStdString());
    }
    for (const auto* button : page.findChildren<QAbstractButton*>()) {
        texts.insert(button->text().toStdString());
    }
    return texts;
}

class SyncPageTexts : public SyncPageTest, public testing::WithParamInterface<const char*> {};

} // namespace

TEST_F(SyncPageTest, SectionsStandInTheirOrder) {
    bench.openPage();
    std::vector<std::string> titles;
    for (const auto* title : bench.page->findChildren<QLabel*>(QStringLiteral("sectionTitle"))) {
        titles.push_back(title->text().toStdString());
    }
    EXPECT_EQ(titles, (std::vector<std::string>{"iCloud Sync", "Automatic Backup", "Backup History",
                                                "Export / Import"}));
}

TEST_P(SyncPageTexts, StandOnThePage) {
    bench.openPage();
    EXPECT_TRUE(textsOf(*bench.page).contains(GetParam()));
}

INSTANTIATE_TEST_SUITE_P(
    All, SyncPageTexts,
    testing::Values("Sync with iCloud",
                    "Syncs tunnels, tags, and key names across your Mac computers via iCloud Key-Value Store.",
                    "Push Now", "Pull Now", "Enable automatic backups", "Backup every", "Change...",
                    "Keep last", "backups", "Backup Now",
                    "Export all tunnels to a JSON file, or import from a previous export or .backup file.",
                    "Export Tunnels...", "Import Tunnels...", "Import from Fernwick SSH",
                    "Import tunnels exported from Fernwick SSH app (.fernwick files)", "Import .fernwick..."));

TEST_F(SyncPageTest, PageThatWasNotShownMakesNoManager) {
    bench.prepare();
    bench.settle();
    EXPECT_EQ(bench.asked, 0);
    EXPECT_EQ(bench.manager, nullptr);
    bench.window->show();
    bench.settle();
    EXPECT_EQ(bench.asked, 1);
}

TEST_F(SyncPageTest, EveryAppearanceListsTheBackupsAndAsksForTheAccount) {
    bench.openPage();
    bench.page->hide();
    bench.settle();
    const auto questions = bench.cloud.questions();
    bench.addBackup("Fernwick_new.backup", std::chrono::hours(1));
    bench.cloud.signIn();
    bench.page->show();
    bench.settle();
    EXPECT_EQ(bench.asked, 1);
    EXPECT_EQ(bench.caption("backupDisclosure"), "1 backup");
    EXPECT_EQ(bench.text("iCloudStatus"), "Available");
    EXPECT_EQ(bench.cloud.questions(), questions + 1);
}

TEST_F(SyncPageTest, ExportTellsWhatWasWritten) {
    bench.storeTunnels(2);
    bench.openPage();
    bench.click("exportButton");
    ASSERT_EQ(bench.dialogs.saveRequests.size(), 1U);
    bench.dialogs.answer("/out.backup");
    EXPECT_TRUE(bench.files.exists("/out.backup"));
    EXPECT_EQ(bench.dismissAlert(), "Export Done: Exported 2 tunnels, 0 proxies, 0 rules");
    EXPECT_EQ(bench.dismissAlert(), "(no alert)");
}

TEST_F(SyncPageTest, ExportOfNothingFailsAtOnce) {
    bench.openPage();
    bench.click("exportButton");
    EXPECT_EQ(bench.dismissAlert(), "Export Failed: No tunnels to export");
    EXPECT_TRUE(bench.enabled("exportButton"));
}

TEST_F(SyncPageTest, ExportPanelThatIsOpenIsNotOpenedAgain) {
    bench.storeTunnels(1);
    bench.openPage();
    bench.find<QWidget>("exportButton").setFocus();
    for (int times = 0; times < 2; ++times) {
        QTest::mouseClick(&bench.find<QWidget>("exportButton"), Qt::LeftButton);
    }
    EXPECT_EQ(bench.dialogs.saveRequests.size(), 1U);
    EXPECT_FALSE(bench.enabled("exportButton"));
    bench.dialogs.answer(std::nullopt);
    EXPECT_TRUE(bench.enabled("exportButton"));
    EXPECT_EQ(bench.focused(), "exportButton");
    EXPECT_EQ(bench.dismissAlert(), "Export Failed: Cancelled");
}

TEST_F(SyncPageTest, ImportAsksForOneFileOfTheKinds) {
    bench.openPage();
    bench.click("importButton");
    ASSERT_EQ(bench.dialogs.requests.size(), 1U);
    ASSERT_TRUE(bench.dialogs.requests[0].kind);
    EXPECT_EQ(bench.dialogs.requests[0].kind->extensions, (std::vector<std::string>{"json", "backup"}));
    EXPECT_FALSE(bench.enabled("importButton"));
}

TEST_F(SyncPageTest, ImportStoresWhatIsInTheFile) {
    bench.openPage();
    bench.putFile("/in.json", listOf<Tunnel>(3));
    bench.click("importButton");
    bench.dialogs.answer("/in.json");
    EXPECT_EQ(bench.dismissAlert(), "Import Done: Tunnels restored successfully");
    EXPECT_EQ(bench.stored(kTunnels), listOf<Tunnel>(3));
    EXPECT_TRUE(bench.enabled("importButton"));
}

TEST_F(SyncPageTest, ImportThatFailsOrIsCancelledIsTold) {
    bench.openPage();
    bench.click("importButton");
    bench.dialogs.answer("/missing.backup");
    EXPECT_EQ(bench.dismissAlert(), "Import Failed: Cannot read file");
    bench.click("importButton");
    bench.dialogs.answer(std::nullopt);
    EXPECT_EQ(bench.dismissAlert(), "Import Failed: Cancelled");
    EXPECT_TRUE(bench.enabled("importButton"));
}

TEST_F(SyncPageTest, ProfilesAreToldAndThenStoredAndReloaded) {
    constexpr const char* kProfile =
        R"({"uuid":"%","name":"n","address":"a","port":22,"user":"me","forwardings":[]})";
    bench.putFile("/in.fernwick", std::string(R"({"profiles":[)") + kProfile + "," + kProfile + "]}");
    bench.openPage();
    int posts = 0;
    const auto posted = bench.notifications.observe("fernwick.tunnelsDidChange", [&] { ++posts; });
    bench.click("importProfilesButton");
    bench.dialogs.answer("/in.fernwick");
    EXPECT_EQ(bench.dismissAlert(), "Import Successful: Imported 2 tunnels from Fernwick SSH.");
    EXPECT_EQ(bench.store.tunnels().size(), 2U);
    EXPECT_EQ(posts, 1);
}

TEST_F(SyncPageTest, OneProfileIsTold) {
    bench.putFile("/in.fernwick", R"({"profiles":[{"uuid":"u","name":"n","address":"a","port":22,"user":"me",)"
                                  R"("forwardings":[]}]})");
    bench.openPage();
    bench.click("importProfilesButton");
    EXPECT_FALSE(bench.enabled("importProfilesButton"));
    bench.dialogs.answer("/in.fernwick");
    EXPECT_EQ(bench.dismissAlert(), "Import Successful: Imported 1 tunnel from Fernwick SSH.");
    EXPECT_TRUE(bench.enabled("importProfilesButton"));
}

TEST_F(SyncPageTest, ProfilesThatCannotBeImportedAreTold) {
    bench.openPage();
    const auto stored = bench.stored(kTunnels);
    bench.click("importProfilesButton");
    bench.dialogs.answer(std::nullopt);
    EXPECT_EQ(bench.dismissAlert(), "Import Failed: Import cancelled");
    bench.putFile("/bad.fernwick", "[]");
    bench.click("importProfilesButton");
    bench.dialogs.answer("/bad.fernwick");
    EXPECT_EQ(bench.dismissAlert(), "Import Failed: File không hợp lệ hoặc không đúng định dạng .fernwick");
    EXPECT_EQ(bench.stored(kTunnels), stored);
}

TEST_F(SyncPageTest, AlertIsOverItsWindowWithOneButton) {
    bench.openPage();
    bench.click("exportButton");
    const auto& alert = bench.find<QDialog>("syncAlert");
    EXPECT_EQ(alert.windowModality(), Qt::WindowModal);
    const auto buttons = alert.findChildren<QPushButton*>();
    ASSERT_EQ(buttons.size(), 1);
    EXPECT_EQ(buttons[0]->text(), QStringLiteral("OK"));
    QTest::keyClick(buttons[0], Qt::Key_Return);
    bench.settle();
    EXPECT_EQ(bench.look<QDialog>("syncAlert"), nullptr);
}

TEST_F(SyncPageTest, AlertsComeOneAfterTheOther) {
    bench.openPage();
    bench.click("exportButton");
    bench.click("pushButton");
    EXPECT_EQ(bench.dismissAlert(), "Export Failed: No tunnels to export");
    EXPECT_EQ(bench.dismissAlert(), "Push failed: Check iCloud availability.");
    EXPECT_EQ(bench.dismissAlert(), "(no alert)");
}

TEST_F(SyncPageTest, AlertShowsNoMarkup) {
    bench.storeTunnels(1);
    bench.files.writeFailure = platform::FileError{28, "<b>No</b> space\nleft & gone"};
    bench.openPage();
    bench.click("backupNowButton");
    EXPECT_EQ(bench.find<QLabel>("syncAlertText").textFormat(), Qt::PlainText);
    EXPECT_EQ(bench.dismissAlert(), "Backup Failed: Write failed: <b>No</b> space left & gone");
}

TEST_F(SyncPageTest, LongMessageStaysInItsSheet) {
    bench.storeTunnels(1);
    bench.files.writeFailure = platform::FileError{28, std::string(5000, 'x')};
    bench.openPage();
    bench.click("backupNowButton");
    const auto& alert = bench.find<QDialog>("syncAlert");
    EXPECT_LT(alert.width(), 500);
    EXPECT_LT(alert.height(), 600);
    EXPECT_LE(bench.find<QLabel>("syncAlertText").geometry().right(), alert.width());
}

TEST_F(SyncPageTest, PageMayGoWhileSomethingRuns) {
    bench.cloud.signIn();
    bench.defaults.set("syncWithiCloud", {true});
    const auto path = bench.addBackup("Fernwick_a.backup", std::chrono::hours(1), listOf<Tunnel>(1));
    bench.openPage();
    bench.click("backupDisclosure");
    bench.find<QAbstractButton>("pullButton").click();
    bench.find<QAbstractButton>("restoreButton").click();
    bench.window.reset();
    bench.dispatch.advance(std::chrono::seconds(10));
    EXPECT_EQ(bench.manager->state().statusMessage, "Nothing to pull from iCloud");
}

TEST_F(SyncPageTest, EveryControlHasANameAloud) {
    bench.openHistory(3);
    int controls = 0;
    for (auto* widget : bench.page->findChildren<QWidget*>()) {
        if (!widget->isVisible() || !(widget->focusPolicy() & Qt::ClickFocus)) {
            continue;
        }
        ++controls;
        const auto* aloud = QAccessible::queryAccessibleInterface(widget);
        ASSERT_NE(aloud, nullptr);
        EXPECT_FALSE(aloud->text(QAccessible::Name).isEmpty()) << widget->objectName().toStdString();
    }
    EXPECT_GE(controls, 20);
}

TEST_F(SyncPageTest, TabKeyReachesEveryControlInItsOrder) {
    bench.openHistory(3);
    bench.find<QWidget>("syncWithiCloudSwitch").setFocus();
    std::vector<std::string> order;
    do {
        order.push_back(bench.focused());
        QTest::keyClick(bench.window->focusWidget(), Qt::Key_Tab);
    } while (bench.focused() != "syncWithiCloudSwitch" && order.size() < 50);
    EXPECT_EQ(order,
              (std::vector<std::string>{"syncWithiCloudSwitch", "checkStatusButton", "pushButton", "pullButton",
                                        "enableAutoBackupSwitch", "backupIntervalMenu", "changeFolderButton",
                                        "maxBackupCountField", "backupNowButton", "backupDisclosure",
                                        "backupList", "restoreButton", "deleteBackupButton", "exportButton",
                                        "importButton", "importProfilesButton"}));
}

} // namespace fernwick::tests
