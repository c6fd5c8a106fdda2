// Pictures of the page of exports, backups and the cloud in its states, for eyes, as those of the settings
// window: in light and dark, at one and at two pixels for each of the screen's.
#include "SavedPicture.h"
#include "SyncBench.h"

#include <QScrollBar>
#include <gtest/gtest.h>

namespace fernwick::tests {
namespace {

class SyncPictures : public testing::TestWithParam<Appearance> {
protected:
    SyncPictures() : bench(GetParam()) {}

    void save(QWidget& widget, const char* name) {
        bench.settle();
        savePicture(widget, "sync", name, GetParam());
    }

    // The whole page, as high as it is.
    void saveWhole(const char* name) {
        bench.settle();
        bench.window->resize(680, bench.page->widget()->sizeHint().height() + 4);
        save(*bench.window, name);
        bench.window->resize(680, 670);
    }

    void addBackups(int count) {
        for (int number = 0; number < count; ++number) {
            const auto date = bench.ago(std::chrono::hours(24 * number + 3));
            bench.putFile(std::string(kDefaultFolder) + "/" + BackupFolder::nameAt(date),
                          std::string(static_cast<std::size_t>(4000 + 137 * number), 'x'), date);
        }
    }

    void share() {
        bench.cloud.signIn();
        bench.defaults.set("syncWithiCloud", {true});
        bench.storeTunnels(3);
    }

    SyncBench bench;
};

TEST_P(SyncPictures, Empty) {
    bench.openPage();
    save(*bench.window, "window");
    saveWhole("empty");
    bench.window->resize(620, 500);
    save(*bench.window, "smallest");
}

TEST_P(SyncPictures, Synced) {
    share();
    bench.defaults.set("enableAutoBackup", {true});
    bench.openPage();
    bench.click("pushButton");
    bench.dismissAlert();
    bench.advance(std::chrono::minutes(7));
    bench.find<QWidget>("pullButton").setFocus(Qt::TabFocusReason);
    saveWhole("synced");
}

TEST_P(SyncPictures, Error) {
    share();
    bench.openPage();
    bench.cloud.fail();
    bench.click("pushButton");
    save(bench.find<QDialog>("syncAlert"), "alert-failed");
    bench.dismissAlert();
    save(*bench.window, "error");
}

TEST_P(SyncPictures, SignedOut) {
    bench.defaults.set("syncWithiCloud", {true});
    bench.openPage();
    save(*bench.window, "signed-out");
}

TEST_P(SyncPictures, History) {
    addBackups(4);
    bench.openPage();
    bench.click("backupDisclosure");
    bench.find<QWidget>("backupDisclosure").setFocus(Qt::TabFocusReason);
    QTest::keyClick(bench.window->focusWidget(), Qt::Key_Tab);
    QTest::keyClick(bench.window->focusWidget(), Qt::Key_Down);
    saveWhole("history");
    addBackups(300);
    bench.addBackup("Fernwick_Export_with a name that nobody could ever read in a list of this width.backup",
                    std::chrono::hours(1));
    bench.manager->refreshBackupEntries();
    saveWhole("history-long");
}

TEST_P(SyncPictures, HistoryWithoutBackups) {
    bench.openPage();
    bench.click("backupDisclosure");
    saveWhole("history-none");
}

TEST_P(SyncPictures, LongFolders) {
    bench.cloudFolder =
        "/media/someone/An external disk with a long name/Synchronized/Everything/Fernwick/Cloud";
    bench.defaults.set("backupPath", {"/media/someone/An external disk with a long name/Archive/Machines/"
                                      "workstation/Applications/Fernwick/Backups"});
    bench.openPage();
    save(*bench.window, "long-folders");
}

TEST_P(SyncPictures, Sheets) {
    bench.storeTunnels(1);
    addBackups(2);
    bench.openPage();
    bench.click("backupNowButton");
    save(bench.find<QDialog>("syncAlert"), "alert");
    bench.dismissAlert();
    bench.click("backupDisclosure");
    bench.find<QAbstractButton>("deleteBackupButton").click();
    save(bench.find<QDialog>("deleteBackupConfirmation"), "confirmation");
}

INSTANTIATE_TEST_SUITE_P(Appearances, SyncPictures, testing::Values(Appearance::light, Appearance::dark),
                         [](const auto& info) {
                             return info.param == Appearance::dark ? std::string("Dark") : std::string("Light");
                         });

} // namespace
} // namespace fernwick::tests
