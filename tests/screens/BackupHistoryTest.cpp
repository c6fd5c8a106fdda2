#include "SyncBench.h"
#include "support/CalendarDate.h"

#include <QAccessible>
#include <QPushButton>
#include <QScrollBar>
#include <QWheelEvent>
#include <gtest/gtest.h>

namespace fernwick::tests {
namespace {

using std::chrono::hours;

class BackupHistoryTest : public SyncPageTest {
protected:
    QListView& list() { return bench.find<QListView>("backupList"); }

    [[nodiscard]] bool exists(int number) {
        return bench.files.exists(std::string(kDefaultFolder) + "/Fernwick_" + std::to_string(number) +
                                  ".backup");
    }

    // What the buttons on the screen are called aloud, from the top down.
    [[nodiscard]] std::vector<std::string> restoreButtons() {
        std::vector<std::pair<int, std::string>> found;
        for (auto* button : bench.window->findChildren<QPushButton*>(QStringLiteral("restoreButton"))) {
            if (button->isVisible()) {
                found.emplace_back(button->mapTo(bench.window.get(), QPoint()).y(),
                                   button->accessibleName().toStdString());
            }
        }
        std::ranges::sort(found);
        std::vector<std::string> names;
        for (auto& [top, name] : found) {
            names.push_back(std::move(name));
        }
        return names;
    }
};

} // namespace

TEST_F(BackupHistoryTest, DisclosureCounts) {
    bench.openPage();
    EXPECT_EQ(bench.caption("backupDisclosure"), "0 backups");
    bench.addBackup("Fernwick_a.backup", hours(1));
    bench.manager->refreshBackupEntries();
    EXPECT_EQ(bench.caption("backupDisclosure"), "1 backup");
    bench.addBackup("Fernwick_b.backup", hours(2));
    bench.manager->refreshBackupEntries();
    EXPECT_EQ(bench.caption("backupDisclosure"), "2 backups");
}

TEST_F(BackupHistoryTest, ListIsFoldedUntilItIsUnfolded) {
    bench.addBackup("Fernwick_a.backup", hours(1));
    bench.openPage();
    EXPECT_FALSE(list().isVisible());
    QTest::keyClick(&bench.find<QWidget>("backupDisclosure"), Qt::Key_Space);
    bench.settle();
    EXPECT_TRUE(list().isVisible());
    EXPECT_FALSE(bench.seen("noBackups"));
    bench.click("backupDisclosure");
    EXPECT_FALSE(list().isVisible());
}

TEST_F(BackupHistoryTest, EmptyListSaysSo) {
    bench.openPage();
    EXPECT_FALSE(bench.seen("noBackups"));
    bench.click("backupDisclosure");
    EXPECT_TRUE(bench.seen("noBackups"));
    EXPECT_FALSE(list().isVisible());
}

TEST_F(BackupHistoryTest, RowsAreNamedAndDatedNewestFirst) {
    bench.addBackup("Fernwick_old.backup", hours(48));
    bench.addBackup("Fernwick_new.backup", hours(1), std::string(1500, 'x'));
    bench.openPage();
    bench.click("backupDisclosure");
    EXPECT_EQ(bench.rows(), (std::vector<std::string>{"Fernwick_new.backup", "Fernwick_old.backup"}));
    const auto spoken = list().model()->index(0, 0).data(Qt::AccessibleTextRole).toString().toStdString();
    const auto date = support::CalendarDateFormatter().text(bench.ago(hours(1)));
    EXPECT_EQ(spoken, "Fernwick_new.backup, " + date + " · 1.5 kB");
}

TEST_F(BackupHistoryTest, RestoreIsTold) {
    bench.addBackup("Fernwick_a.backup", hours(1), listOf<Tunnel>(4));
    bench.openPage();
    bench.click("backupDisclosure");
    bench.press("Restore Fernwick_a.backup");
    EXPECT_EQ(bench.dismissAlert(), "Restored: Tunnels restored successfully");
    EXPECT_EQ(bench.stored(kTunnels), listOf<Tunnel>(4));
}

TEST_F(BackupHistoryTest, RestoreThatFailsIsTold) {
    bench.openHistory(1);
    bench.press("Restore Fernwick_0.backup");
    EXPECT_EQ(bench.dismissAlert(), "Restore Failed: Unrecognised backup format");
}

TEST_F(BackupHistoryTest, RestoreThatRunsIsNotStartedAgain) {
    bench.addBackup("Fernwick_a.backup", hours(1), R"({"tunnels":")" + base64(listOf<Tunnel>(1)) + "\"}");
    bench.openPage();
    bench.click("backupDisclosure");
    bench.press("Restore Fernwick_a.backup");
    bench.press("Restore Fernwick_a.backup");
    bench.advance(std::chrono::milliseconds(100));
    EXPECT_EQ(bench.dismissAlert(), "Restored: Restore successful");
    EXPECT_EQ(bench.dismissAlert(), "(no alert)");
    bench.press("Restore Fernwick_a.backup");
    bench.advance(std::chrono::milliseconds(100));
    EXPECT_EQ(bench.dismissAlert(), "Restored: Restore successful");
}

TEST_F(BackupHistoryTest, DeletionIsConfirmedFirst) {
    bench.openHistory(3);
    bench.press("Delete Fernwick_1.backup");
    EXPECT_EQ(bench.text("deleteBackupConfirmationTitle"), "Delete this backup?");
    EXPECT_EQ(bench.text("deleteBackupConfirmationText"), "Fernwick_1.backup");
    EXPECT_EQ(bench.caption("deleteBackupCancelButton"), "Cancel");
    EXPECT_EQ(bench.caption("deleteBackupConfirmButton"), "Delete");
    EXPECT_EQ(buttonRole(&bench.find<QPushButton>("deleteBackupConfirmButton")), ButtonRole::destructive);
    EXPECT_EQ(bench.find<QDialog>("deleteBackupConfirmation").windowModality(), Qt::WindowModal);
    EXPECT_TRUE(exists(1));
    bench.click("deleteBackupConfirmButton");
    EXPECT_FALSE(exists(1));
    EXPECT_EQ(bench.rows(), (std::vector<std::string>{"Fernwick_0.backup", "Fernwick_2.backup"}));
    EXPECT_EQ(bench.caption("backupDisclosure"), "2 backups");
}

TEST_F(BackupHistoryTest, DeletionThatIsCancelledKeepsTheFile) {
    bench.openHistory(1);
    bench.press("Delete Fernwick_0.backup");
    QTest::keyClick(&bench.find<QDialog>("deleteBackupConfirmation"),
                    Qt::Key_Return); // Cancel has the keyboard
    bench.settle();
    bench.press("Delete Fernwick_0.backup");
    QTest::keyClick(&bench.find<QDialog>("deleteBackupConfirmation"), Qt::Key_Escape);
    bench.settle();
    EXPECT_TRUE(exists(0));
    EXPECT_EQ(bench.look<QDialog>("deleteBackupConfirmation"), nullptr);
}

TEST_F(BackupHistoryTest, FileThatCannotBeDeletedStaysInTheList) {
    bench.openHistory(1);
    bench.files.undeletable.insert(std::string(kDefaultFolder) + "/Fernwick_0.backup");
    bench.press("Delete Fernwick_0.backup");
    bench.click("deleteBackupConfirmButton");
    EXPECT_EQ(bench.rows().size(), 1U);
}

TEST_F(BackupHistoryTest, LastDeletionLeavesTheKeyboardOnThePage) {
    bench.openHistory(1);
    list().setFocus();
    QTest::keyClick(&list(), Qt::Key_Delete);
    bench.settle();
    bench.click("deleteBackupConfirmButton");
    EXPECT_TRUE(bench.seen("noBackups"));
    EXPECT_EQ(bench.focused(), "backupDisclosure");
}

TEST_F(BackupHistoryTest, KeyboardAloneRestoresAndDeletes) {
    bench.openHistory(3);
    bench.find<QWidget>("backupDisclosure").setFocus();
    QTest::keyClick(bench.window->focusWidget(), Qt::Key_Tab);
    EXPECT_EQ(list().currentIndex().row(), 0);
    QTest::keyClick(&list(), Qt::Key_Down);
    QTest::keyClick(&list(), Qt::Key_Tab);
    ASSERT_EQ(bench.focused(), "restoreButton");
    EXPECT_EQ(bench.window->focusWidget()->accessibleName(), QStringLiteral("Restore Fernwick_1.backup"));
    QTest::keyClick(bench.window->focusWidget(), Qt::Key_Space);
    bench.settle();
    EXPECT_EQ(bench.dismissAlert(), "Restore Failed: Unrecognised backup format");
    QTest::keyClick(bench.window->focusWidget(), Qt::Key_Tab);
    QTest::keyClick(bench.window->focusWidget(), Qt::Key_Space);
    bench.settle();
    QTest::keyClick(&bench.find<QPushButton>("deleteBackupConfirmButton"), Qt::Key_Space);
    bench.settle();
    EXPECT_FALSE(exists(1));
    EXPECT_TRUE(exists(0) && exists(2));
}

TEST_F(BackupHistoryTest, AThousandBackupsMakeAFewWidgets) {
    bench.openHistory(3);
    const auto few = bench.page->findChildren<QWidget*>().size();
    bench.window.reset();
    bench.openHistory(1000);
    EXPECT_EQ(list().model()->rowCount(), 1000);
    EXPECT_EQ(bench.page->findChildren<QWidget*>().size(), few);
    EXPECT_LT(list().height(), 350);
}

TEST_F(BackupHistoryTest, ButtonsAreThoseOfTheRowsThatAreSeen) {
    bench.openHistory(1000);
    EXPECT_EQ(restoreButtons().size(), 6U);
    EXPECT_EQ(restoreButtons().front(), "Restore Fernwick_0.backup");
    list().scrollTo(list().model()->index(500, 0), QAbstractItemView::PositionAtTop);
    bench.settle();
    EXPECT_EQ(restoreButtons().front(), "Restore Fernwick_500.backup");
    bench.press("Delete Fernwick_503.backup");
    bench.click("deleteBackupConfirmButton");
    EXPECT_FALSE(exists(503));
    list().verticalScrollBar()->setValue(list().verticalScrollBar()->maximum());
    EXPECT_EQ(restoreButtons().back(), "Restore Fernwick_999.backup");
}

TEST_F(BackupHistoryTest, ButtonsStandInTheirRows) {
    bench.openHistory(20);
    const int some = list().verticalScrollBar()->maximum() / 3;
    list().verticalScrollBar()->setValue(some);
    for (auto* button : bench.window->findChildren<QPushButton*>(QStringLiteral("restoreButton"))) {
        if (button->isVisible()) {
            const QPoint centre = button->mapTo(bench.window.get(), button->rect().center());
            const QModelIndex row = list().indexAt(list().viewport()->mapFrom(bench.window.get(), centre));
            EXPECT_EQ(QStringLiteral("Restore ") + row.data().toString(), button->accessibleName());
        }
    }
}

TEST_F(BackupHistoryTest, KeyboardDoesNotMoveToAnotherFileWithTheList) {
    bench.openHistory(100);
    bench.called("Restore Fernwick_2.backup")->setFocus();
    ASSERT_EQ(bench.focused(), "restoreButton");
    list().verticalScrollBar()->setValue(1); // it can still be seen
    EXPECT_EQ(bench.window->focusWidget()->accessibleName(), QStringLiteral("Restore Fernwick_2.backup"));
    list().verticalScrollBar()->setValue(list().verticalScrollBar()->maximum());
    EXPECT_EQ(bench.focused(), "backupList");
}

TEST_F(BackupHistoryTest, WheelOverTheButtonsScrollsTheList) {
    bench.openHistory(100);
    auto* button = bench.called("Restore Fernwick_2.backup");
    const QPoint where = button->rect().center();
    QWheelEvent turn(where, button->mapToGlobal(where), QPoint(), QPoint(0, -240), Qt::NoButton, Qt::NoModifier,
                     Qt::NoScrollPhase, false);
    QApplication::sendEvent(button->parentWidget()->parentWidget(), &turn); // to whom the button leaves it
    EXPECT_GT(list().verticalScrollBar()->value(), 0);
}

TEST_F(BackupHistoryTest, ChosenRowStaysWithItsFile) {
    bench.openHistory(5);
    list().setCurrentIndex(list().model()->index(2, 0));
    bench.addBackup("Fernwick_new.backup", hours(0));
    bench.manager->refreshBackupEntries();
    bench.settle();
    EXPECT_EQ(list().currentIndex().data().toString(), QStringLiteral("Fernwick_2.backup"));
    bench.files.files.erase(std::string(kDefaultFolder) + "/Fernwick_4.backup");
    bench.addBackup("Fernwick_newest.backup", hours(0));
    bench.manager->refreshBackupEntries();
    bench.settle();
    EXPECT_EQ(list().currentIndex().data().toString(), QStringLiteral("Fernwick_2.backup"));
    EXPECT_EQ(bench.rows().size(), 6U);
}

TEST_F(BackupHistoryTest, ListIsReadAloud) {
    bench.openHistory(3);
    auto* aloud = QAccessible::queryAccessibleInterface(&list());
    EXPECT_EQ(aloud->role(), QAccessible::List);
    EXPECT_EQ(aloud->text(QAccessible::Name), QStringLiteral("Backup History"));
    EXPECT_EQ(aloud->childCount(), 3);
    EXPECT_TRUE(aloud->child(1)->text(QAccessible::Name).startsWith(QStringLiteral("Fernwick_1.backup, ")));
}

} // namespace fernwick::tests
