#include "SyncBench.h"
#include "screens/settings/CountField.h"
#include "support/CalendarDate.h"

#include <gtest/gtest.h>

namespace fernwick::tests {
namespace {

using std::chrono::hours;

class SyncBackupsTest : public SyncPageTest {
protected:
    [[nodiscard]] std::vector<std::string> intervals() const {
        const auto& menu = bench.find<QComboBox>("backupIntervalMenu");
        std::vector<std::string> texts;
        for (int choice = 0; choice < menu.count(); ++choice) {
            texts.push_back(menu.itemText(choice).toStdString());
        }
        return texts;
    }
    [[nodiscard]] std::string interval() const {
        return bench.find<QComboBox>("backupIntervalMenu").currentText().toStdString();
    }
    void choose(int choice) {
        bench.find<QComboBox>("backupIntervalMenu").setCurrentIndex(choice);
        bench.settle();
    }

    CountField& countField() { return bench.find<CountField>("maxBackupCountField"); }
    void typeCount(const char* typed) {
        countField().setFocus();
        countField().selectAll();
        QTest::keyClick(&countField(), Qt::Key_Delete);
        QTest::keyClicks(&countField(), QString::fromLatin1(typed));
    }
    // The stored number, or -1 for none.
    [[nodiscard]] std::int64_t storedCount() const {
        const auto value = bench.defaults.value("maxBackupCount");
        const auto* count = value ? value->as<std::int64_t>() : nullptr;
        return count != nullptr ? *count : -1;
    }
};

struct CountRow {
    const char* name;
    const char* typed;
    std::int64_t stored;
    const char* shown;
};

class TypedCount : public SyncBackupsTest, public testing::WithParamInterface<CountRow> {};

const std::vector<std::string> kSixIntervals{"1 hour", "6 hours", "12 hours", "24 hours", "3 days", "7 days"};

} // namespace

TEST_F(SyncBackupsTest, SwitchStartsAndEndsTheTimer) {
    bench.storeTunnels(1);
    bench.openPage();
    EXPECT_FALSE(bench.on("enableAutoBackupSwitch"));
    bench.click("enableAutoBackupSwitch");
    EXPECT_EQ(bench.caption("backupDisclosure"), "1 backup"); // one was due
    bench.advance(hours(24));
    EXPECT_EQ(bench.caption("backupDisclosure"), "2 backups");
    bench.click("enableAutoBackupSwitch");
    EXPECT_FALSE(bench.manager->settings().enableAutoBackup());
    bench.advance(hours(48));
    EXPECT_EQ(bench.caption("backupDisclosure"), "2 backups");
}

TEST_F(SyncBackupsTest, MenuOffersSixIntervals) {
    bench.openPage();
    EXPECT_EQ(intervals(), kSixIntervals);
    EXPECT_EQ(interval(), "24 hours");
}

TEST_F(SyncBackupsTest, ChoiceOfAnIntervalIsStoredAndTheTimerBeginsAnew) {
    bench.storeTunnels(1);
    bench.defaults.set("enableAutoBackup", {true});
    bench.openPage();
    const std::vector<std::int64_t> stored{1, 6, 12, 24, 72, 168};
    for (std::size_t choice = 0; choice < stored.size(); ++choice) {
        choose(static_cast<int>(choice));
        EXPECT_EQ(bench.manager->settings().backupIntervalHrs(), stored[choice]);
    }
    choose(0);
    EXPECT_EQ(bench.caption("backupDisclosure"), "1 backup");
    bench.advance(hours(1));
    EXPECT_EQ(bench.caption("backupDisclosure"), "2 backups");
}

TEST_F(SyncBackupsTest, SameIntervalAgainLeavesTheTimerAlone) {
    bench.storeTunnels(1);
    bench.defaults.set("enableAutoBackup", {true});
    bench.openPage();
    bench.advance(hours(23));
    Q_EMIT bench.find<QComboBox>("backupIntervalMenu").activated(3);
    bench.advance(hours(1));
    EXPECT_EQ(bench.caption("backupDisclosure"), "2 backups");
}

TEST_F(SyncBackupsTest, IntervalOfAnotherHandIsOfferedWhileItIsStored) {
    bench.defaults.set("backupIntervalHrs", {std::int64_t{48}});
    bench.openPage();
    EXPECT_EQ(intervals(), (std::vector<std::string>{"1 hour", "6 hours", "12 hours", "24 hours", "2 days",
                                                     "3 days", "7 days"}));
    EXPECT_EQ(interval(), "2 days");
    choose(6);
    EXPECT_EQ(interval(), "7 days");
    EXPECT_EQ(intervals(), kSixIntervals);
    EXPECT_EQ(bench.manager->settings().backupIntervalHrs(), 168);
}

TEST_F(SyncBackupsTest, SenselessIntervalIsShownAsItIs) {
    bench.defaults.set("backupIntervalHrs", {std::int64_t{-5}});
    bench.openPage();
    EXPECT_EQ(interval(), "-5 hours");
    EXPECT_EQ(bench.manager->settings().backupIntervalHrs(), -5);
}

TEST_F(SyncBackupsTest, FolderIsTheDefaultOneUntilAnotherIsChosen) {
    bench.openPage();
    EXPECT_EQ(bench.text("backupFolder"), "~/Documents/Fernwick/Backups");
    bench.putFile("/backups/Fernwick_old.backup", "text");
    bench.click("changeFolderButton");
    ASSERT_EQ(bench.dialogs.folderRequests.size(), 1U);
    EXPECT_EQ(bench.dialogs.folderRequests[0].message, "Choose folder for automatic backups");
    EXPECT_FALSE(bench.enabled("changeFolderButton"));
    bench.dialogs.answer("/backups");
    EXPECT_EQ(bench.text("backupFolder"), "/backups");
    EXPECT_EQ(bench.manager->settings().backupPath(), "/backups");
    EXPECT_EQ(bench.caption("backupDisclosure"), "1 backup");
    EXPECT_TRUE(bench.enabled("changeFolderButton"));
}

TEST_F(SyncBackupsTest, FolderPanelThatIsDismissedChangesNothing) {
    bench.defaults.set("backupPath", {std::string("/backups")});
    bench.openPage();
    bench.click("changeFolderButton");
    EXPECT_EQ(bench.dialogs.folderRequests.at(0).folder, "/backups");
    bench.dialogs.answer(std::nullopt);
    EXPECT_EQ(bench.text("backupFolder"), "/backups");
    EXPECT_TRUE(bench.enabled("changeFolderButton"));
    EXPECT_EQ(bench.dismissAlert(), "(no alert)");
}

TEST_P(TypedCount, IsStoredIfItIsOneOrMore) {
    bench.defaults.set("maxBackupCount", {std::int64_t{10}});
    bench.openPage();
    typeCount(GetParam().typed);
    QTest::keyClick(&countField(), Qt::Key_Return);
    EXPECT_EQ(storedCount(), GetParam().stored);
    EXPECT_EQ(countField().text().toStdString(), GetParam().shown);
}

INSTANTIATE_TEST_SUITE_P(
    Numbers, TypedCount,
    testing::Values(CountRow{"Another", "25", 25, "25"}, CountRow{"Least", "1", 1, "1"},
                    CountRow{"LeadingZeros", "007", 7, "7"}, CountRow{"Zero", "0", 10, "10"},
                    CountRow{"Nothing", "", 10, "10"}, CountRow{"Words", "ten", 10, "10"},
                    CountRow{"Fraction", "2.5", 25, "25"}, // no point can be typed
                    CountRow{"Negative", "-3", 3, "3"},    // no sign either
                    CountRow{"TooLong", "99999999999999999999", 10, "10"},
                    CountRow{"Largest", "9223372036854775807", 9223372036854775807, "9223372036854775807"}),
    [](const auto& row) { return row.param.name; });

TEST_F(SyncBackupsTest, CountIsStoredOnceItIsWhole) {
    bench.openPage();
    EXPECT_EQ(countField().text(), QStringLiteral("10"));
    EXPECT_EQ(countField().width(), 60);
    typeCount("15");
    EXPECT_EQ(storedCount(), -1);
    bench.find<QWidget>("backupNowButton").setFocus();
    EXPECT_EQ(storedCount(), 15);
}

TEST_F(SyncBackupsTest, CountIsStoredWhenThePageGoes) {
    bench.openPage();
    typeCount("15");
    bench.window->close();
    EXPECT_EQ(storedCount(), 15);
}

TEST_F(SyncBackupsTest, CountThatAssistiveTechnologySetsIsCheckedToo) {
    bench.openPage();
    bench.find<QWidget>("pushButton").setFocus();
    countField().setText(QStringLiteral("-4"));
    EXPECT_EQ(storedCount(), -1);
    EXPECT_EQ(countField().text(), QStringLiteral("10"));
    countField().setText(QStringLiteral("4"));
    EXPECT_EQ(storedCount(), 4);
}

TEST_F(SyncBackupsTest, StoredCountIsShownWhateverItIs) {
    bench.defaults.set("maxBackupCount", {std::int64_t{-2}});
    bench.openPage();
    EXPECT_EQ(countField().text(), QStringLiteral("-2"));
    bench.window->close();
    EXPECT_EQ(storedCount(), -2);
}

TEST_F(SyncBackupsTest, BackupNowTellsTheFilesName) {
    bench.storeTunnels(1);
    bench.openPage();
    EXPECT_FALSE(bench.seen("lastBackup"));
    bench.click("backupNowButton");
    const auto name = std::string(bench.manager->state().backupEntries.at(0).name());
    EXPECT_EQ(bench.dismissAlert(), "Backup Complete: " + name);
    EXPECT_EQ(bench.text("lastBackup"), "Last: " + support::CalendarDateFormatter().text(bench.clock.now()));
    EXPECT_TRUE(bench.seen("lastBackup"));
    EXPECT_TRUE(bench.enabled("backupNowButton"));
}

TEST_F(SyncBackupsTest, BackupThatFailsIsTold) {
    bench.openPage();
    bench.click("backupNowButton");
    EXPECT_EQ(bench.dismissAlert(), "Backup Failed: No data to backup");
    EXPECT_FALSE(bench.seen("lastBackup"));
}

} // namespace fernwick::tests
