#include "SyncWorld.h"

#include <gtest/gtest.h>

namespace fernwick::tests {
namespace {

using Names = std::vector<std::string>;
using std::chrono::hours;

struct BackupWorld : SyncWorld {
    BackupWorld() {
        setenv("TZ", "ICT-7", 1); // NOLINT(concurrency-mt-unsafe): no other thread runs
        tzset();
        defaults.setData(kTunnels, "[]");
        clock.setNow({816442875.0}); // 2026-11-15T13:41:15Z
        files.folders.insert(std::string(kDefaultFolder));
    }

    // A file in the default folder that changed so many hours ago.
    void putBackup(const std::string& name, int age) {
        putFile(std::string(kDefaultFolder) + "/" + name, "{}", ago(hours(age)));
    }
};

TEST(Backup, WithoutStoredTunnelsThereIsNone) {
    BackupWorld world;
    world.defaults.remove(kTunnels);
    EXPECT_FALSE(world.open().runBackup(world.completion()));
    EXPECT_EQ(world.told, Tellings({{false, "No data to backup"}}));
    EXPECT_TRUE(world.files.files.empty());
}

TEST(Backup, WritesTheListsIntoAFileNamedByTheLocalTime) {
    BackupWorld world;
    world.defaults.setData(kKeys, "K");
    EXPECT_TRUE(world.open().runBackup(world.completion()));
    EXPECT_EQ(world.told, Tellings({{true, "Fernwick_2026-11-15_20-41-15.backup"}}));
    const auto& file = world.files.files[std::string(kDefaultFolder) + "/Fernwick_2026-11-15_20-41-15.backup"];
    EXPECT_EQ(file.bytes, R"({"tunnels":"W10=","keys":"Sw=="})");
    EXPECT_EQ(file.mode, 0600U);
}

TEST(Backup, ChangesTheDateTheMessageAndTheList) {
    BackupWorld world;
    EXPECT_TRUE(world.open().runBackup());
    const auto& state = world.manager->state();
    EXPECT_EQ(state.lastBackupDate, world.clock.now());
    EXPECT_EQ(world.number("lastBackupTS"), world.clock.now().secondsSinceUnixEpoch());
    EXPECT_EQ(state.statusMessage, "Backup saved: Fernwick_2026-11-15_20-41-15.backup");
    EXPECT_EQ(world.listedNames(), Names{"Fernwick_2026-11-15_20-41-15.backup"});
    EXPECT_EQ(state.backupEntries[0].fileSize,
              static_cast<std::int64_t>(std::string(R"({"tunnels":"W10="})").size()));
    EXPECT_FALSE(state.isWorking);
}

TEST(Backup, AFolderThatCannotBeMadeIsTold) {
    BackupWorld world;
    world.files.folderFailure = platform::FileError{13, "Permission denied"};
    EXPECT_FALSE(world.open().runBackup(world.completion()));
    EXPECT_EQ(world.told, Tellings({{false, "Cannot create backup folder: Permission denied"}}));
}

TEST(Backup, WhatCannotBeEncodedIsTold) {
    BackupWorld world;
    world.encode = [](const CatalogueBlobs&) { return std::nullopt; };
    EXPECT_FALSE(world.open().runBackup(world.completion()));
    EXPECT_EQ(world.told, Tellings({{false, "Failed to encode backup"}}));
    EXPECT_TRUE(world.files.folders.contains(std::string(kDefaultFolder)));
}

TEST(Backup, AFullDiskIsToldAndChangesNothingElse) {
    BackupWorld world;
    world.putBackup("Fernwick_old.backup", 5);
    world.open().settings().setMaxBackupCount(0);
    world.files.writeFailure = platform::FileError{28, "No space left on device"};
    EXPECT_FALSE(world.manager->runBackup(world.completion()));
    EXPECT_EQ(world.told, Tellings({{false, "Write failed: No space left on device"}}));
    EXPECT_EQ(world.manager->state().lastBackupDate, std::nullopt);
    EXPECT_EQ(world.defaults.value("lastBackupTS"), std::nullopt);
    EXPECT_EQ(world.manager->state().statusMessage, "");
    EXPECT_EQ(world.listedNames(), Names{"Fernwick_old.backup"});
}

TEST(Backup, ASecondOneWithinASecondReplacesTheFirst) {
    BackupWorld world;
    world.open().runBackup();
    world.defaults.setData(kTunnels, "newer");
    world.manager->runBackup();
    ASSERT_EQ(world.files.files.size(), 1U);
    EXPECT_EQ(world.files.files.begin()->second.bytes, R"({"tunnels":")" + base64("newer") + "\"}");
}

TEST(Backup, OfFiveFilesTheTwoOldestGo) {
    BackupWorld world;
    world.open().settings().setMaxBackupCount(3);
    for (int age = 1; age <= 4; ++age) {
        world.putBackup("Fernwick_" + std::to_string(age), age);
    }
    world.manager->runBackup();
    EXPECT_EQ(world.listedNames(), Names({"Fernwick_2026-11-15_20-41-15.backup", "Fernwick_1", "Fernwick_2"}));
}

TEST(Backup, TenAreKeptUnlessItIsSet) {
    BackupWorld world;
    world.open();
    for (int age = 1; age <= 20; ++age) {
        world.putBackup("Fernwick_" + std::to_string(age), age);
    }
    world.manager->runBackup();
    EXPECT_EQ(world.manager->state().backupEntries.size(), 10U);
}

TEST(Backup, WithACountOfNoneEveryFileGoes) {
    BackupWorld world;
    world.putBackup("Fernwick_old", 9);
    world.open().settings().setMaxBackupCount(0);
    EXPECT_TRUE(world.manager->runBackup(world.completion()));
    EXPECT_EQ(world.told, Tellings({{true, "Fernwick_2026-11-15_20-41-15.backup"}}));
    EXPECT_TRUE(world.files.files.empty());
    EXPECT_TRUE(world.manager->state().backupEntries.empty());
}

TEST(Backup, ARemovalThatFailsHoldsUpNoOther) {
    BackupWorld world;
    world.open().settings().setMaxBackupCount(1);
    for (int age = 1; age <= 3; ++age) {
        world.putBackup("Fernwick_" + std::to_string(age), age);
    }
    world.files.undeletable.insert(std::string(kDefaultFolder) + "/Fernwick_2");
    EXPECT_TRUE(world.manager->runBackup());
    EXPECT_EQ(world.listedNames(), Names({"Fernwick_2026-11-15_20-41-15.backup", "Fernwick_2"}));
}

TEST(Backup, AForeignFileWithSuchANameIsListedAndRotatedAway) {
    BackupWorld world;
    world.putBackup("Fernwick_shopping list.txt", 3);
    world.putBackup("Fernwick_Export_2026-11-14T00:00:00Z.backup", 2);
    world.open();
    EXPECT_EQ(world.listedNames(),
              Names({"Fernwick_Export_2026-11-14T00:00:00Z.backup", "Fernwick_shopping list.txt"}));
    world.manager->settings().setMaxBackupCount(2);
    world.manager->runBackup();
    EXPECT_EQ(world.listedNames(),
              Names({"Fernwick_2026-11-15_20-41-15.backup", "Fernwick_Export_2026-11-14T00:00:00Z.backup"}));
}

TEST(Backup, AFileOfAnotherNameIsNeitherListedNorRemoved) {
    BackupWorld world;
    for (const auto* name :
         {"fernwick_a", "Fernwick.backup", "notes.txt", "Fernwick", "a Fernwick_b", ".Fernwick_c"}) {
        world.putBackup(name, 99);
    }
    world.open().settings().setMaxBackupCount(0);
    EXPECT_EQ(world.listedNames(), Names());
    world.manager->runBackup();
    EXPECT_EQ(world.files.files.size(), 6U);
}

TEST(Backup, AnotherFolderIsListedNextAndTheOldFilesStay) {
    BackupWorld world;
    world.open().runBackup();
    world.manager->settings().setBackupPath("/media/stick");
    EXPECT_EQ(world.manager->backupFolder(), "/media/stick");
    world.manager->refreshBackupEntries();
    EXPECT_EQ(world.listedNames(), Names());
    world.manager->runBackup();
    EXPECT_TRUE(world.files.files.contains("/media/stick/Fernwick_2026-11-15_20-41-15.backup"));
    EXPECT_EQ(world.files.files.size(), 2U);
}

TEST(Backup, AFileOfUnknownDateSortsAsWrittenNow) {
    BackupWorld world;
    world.putBackup("Fernwick_1", 1);
    world.putFile(std::string(kDefaultFolder) + "/Fernwick_undated", "");
    world.putBackup("Fernwick_future", -1);
    world.open();
    EXPECT_EQ(world.listedNames(), Names({"Fernwick_future", "Fernwick_undated", "Fernwick_1"}));
    EXPECT_EQ(world.manager->state().backupEntries[1].date, world.clock.now());
}

TEST(Backup, FilesOfOneDateStayInTheOrderOfTheFolder) {
    BackupWorld world;
    for (const auto* name : {"Fernwick_b", "Fernwick_a", "Fernwick_c"}) {
        world.putBackup(name, 4);
    }
    world.putBackup("Fernwick_z", 3);
    world.open();
    EXPECT_EQ(world.listedNames(), Names({"Fernwick_z", "Fernwick_a", "Fernwick_b", "Fernwick_c"}));
}

TEST(Backup, AListedEntryHasAnIdentityOfItsOwnEachTime) {
    BackupWorld world;
    world.putBackup("Fernwick_1", 1);
    world.open();
    const auto first = world.manager->state().backupEntries.at(0);
    world.manager->refreshBackupEntries();
    const auto second = world.manager->state().backupEntries.at(0);
    EXPECT_NE(first.id, second.id);
    EXPECT_EQ(first.url, std::string(kDefaultFolder) + "/Fernwick_1");
    EXPECT_EQ(first.date, world.ago(hours(1)));
    EXPECT_EQ(first.fileSize, 2);
}

TEST(Backup, AFolderThatCannotBeReadHasNoEntries) {
    BackupWorld world;
    world.putBackup("Fernwick_1", 1);
    world.open();
    EXPECT_EQ(world.manager->state().backupEntries.size(), 1U);
    world.files.unreadable.insert(std::string(kDefaultFolder));
    world.manager->refreshBackupEntries();
    EXPECT_TRUE(world.manager->state().backupEntries.empty());
    EXPECT_EQ(world.manager->state().statusMessage, "");
}

TEST(Backup, DeletingRemovesTheFileAndListsAnew) {
    BackupWorld world;
    world.putBackup("Fernwick_1", 1);
    world.putBackup("Fernwick_2", 2);
    world.open().deleteBackup(world.manager->state().backupEntries.at(0));
    EXPECT_EQ(world.listedNames(), Names{"Fernwick_2"});
}

TEST(Backup, DeletingWhatCannotBeDeletedLeavesItInTheList) {
    BackupWorld world;
    world.putBackup("Fernwick_1", 1);
    world.files.undeletable.insert(std::string(kDefaultFolder) + "/Fernwick_1");
    world.open().deleteBackup(world.manager->state().backupEntries.at(0));
    EXPECT_EQ(world.listedNames(), Names{"Fernwick_1"});
}

TEST(Backup, DeletingWhatIsGoneListsAnew) {
    BackupWorld world;
    world.putBackup("Fernwick_1", 1);
    world.open();
    world.files.files.clear();
    world.manager->deleteBackup(world.manager->state().backupEntries.at(0));
    EXPECT_EQ(world.listedNames(), Names());
}

TEST(Backup, TheDefaultFolderIsBelowTheHomeThatWasGiven) {
    BackupWorld world;
    world.host.environment["HOME"] = "/tmp/home";
    EXPECT_EQ(world.open().backupFolder(), "/tmp/home/Documents/Fernwick/Backups");
    world.host.environment["HOME"] = "nowhere";
    EXPECT_EQ(world.manager->backupFolder(), std::string(kDefaultFolder));
    world.host.environment.erase("HOME");
    EXPECT_EQ(world.manager->backupFolder(), std::string(kDefaultFolder));
}

TEST(Backup, AListedBackupCanBeRestored) {
    BackupWorld world;
    world.open().runBackup();
    world.defaults.setData(kTunnels, "other");
    world.manager->restoreBackup(world.manager->state().backupEntries.at(0).url, world.completion());
    world.dispatch.advance(std::chrono::seconds(1));
    EXPECT_EQ(world.told, Tellings({{true, "Restore successful"}}));
    EXPECT_EQ(world.stored(kTunnels), "[]");
}

TEST(BackupDeathTest, ANegativeCountIsAFault) {
    BackupWorld world;
    world.open().settings().setMaxBackupCount(-1);
    EXPECT_DEATH(world.manager->runBackup(), "maxBackupCount is negative");
}

} // namespace
} // namespace fernwick::tests
