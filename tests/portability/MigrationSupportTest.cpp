#include "MigrationWorld.h"

#include <gtest/gtest.h>

#include <utility>

namespace fernwick::tests {

namespace {

// A predecessor with keys to bring along, and a support folder with these files.
struct SupportWorld : MigrationWorld {
    SupportWorld() { setOldData("savedSSHKeys", "[keys]"); }

    // The lines about the support folder.
    Lines support() {
        auto lines = start();
        EXPECT_GE(lines.size(), 3U);
        EXPECT_EQ(lines.at(1), "[Migration] ✅ Copied: savedSSHKeys");
        EXPECT_EQ(lines.back(), kCompleted);
        EXPECT_TRUE(isDone());
        return {lines.begin() + 2, lines.end() - 1};
    }

    [[nodiscard]] std::string fileHere(const std::string& name) const {
        const auto found = files.files.find("/data/Fernwick/" + name);
        return found != files.files.end() ? found->second.bytes : "(nothing)";
    }
};

const platform::FileError kFull{28, "No space left on device"};

} // namespace

TEST(MigrationSupport, EverythingAtTheTopIsCopiedInTheOrderOfTheListing) {
    SupportWorld world;
    world.oldFile("config.yaml", "mode: rule");
    world.oldFile(".hidden", "too");
    world.oldFile("logs/one", "1");
    world.files.folders.insert("/data/Larkmere/logs");
    world.files.links.emplace("/data/Larkmere/link", "config.yaml");
    world.items.order["/data/Larkmere"] = {"logs", "config.yaml", "link", ".hidden"};
    EXPECT_EQ(world.support(),
              (Lines{"[Migration] ✅ AppSupport: logs", "[Migration] ✅ AppSupport: config.yaml",
                     "[Migration] ✅ AppSupport: link", "[Migration] ✅ AppSupport: .hidden"}));
    EXPECT_EQ(world.fileHere("config.yaml"), "mode: rule");
    EXPECT_EQ(world.fileHere(".hidden"), "too");
    EXPECT_EQ(world.fileHere("logs/one"), "1");
    EXPECT_EQ(world.files.links.at("/data/Fernwick/link"), "config.yaml");
    EXPECT_EQ(world.files.files.at("/data/Larkmere/config.yaml").bytes, "mode: rule");
}

TEST(MigrationSupport, NoSupportDirectoriesAreNoLine) {
    SupportWorld world;
    world.oldFile("file", "text");
    world.supportFolders.clear();
    EXPECT_EQ(world.support(), Lines());
    EXPECT_TRUE(world.items.copies.empty());
}

TEST(MigrationSupport, NoOldFolderIsALineAndMakesNone) {
    SupportWorld world;
    EXPECT_EQ(world.support(), Lines{"[Migration] No old Application Support folder found."});
    EXPECT_TRUE(world.files.folders.empty());
}

TEST(MigrationSupport, OnlyTheFirstDirectoryCounts) {
    SupportWorld world;
    world.files.folders.insert("/another/Larkmere");
    EXPECT_EQ(world.support(), Lines{"[Migration] No old Application Support folder found."});
}

TEST(MigrationSupport, EmptyOldFolderMakesTheNewOne) {
    SupportWorld world;
    world.files.folders.insert("/data/Larkmere");
    EXPECT_EQ(world.support(), Lines());
    EXPECT_TRUE(world.files.folders.contains("/data/Fernwick"));
}

TEST(MigrationSupport, WhatIsHereStaysAndFoldersAreNotMerged) {
    SupportWorld world;
    world.oldFile("config.yaml", "old");
    world.oldFile("logs/one", "1");
    world.oldFile("new", "text");
    world.files.folders.insert({"/data/Larkmere/logs", "/data/Fernwick", "/data/Fernwick/logs"});
    world.files.files.insert_or_assign("/data/Fernwick/config.yaml", fakes::FakeFileSystem::File{"mine", 0600});
    EXPECT_EQ(world.support(), Lines{"[Migration] ✅ AppSupport: new"});
    EXPECT_EQ(world.fileHere("config.yaml"), "mine");
    EXPECT_EQ(world.fileHere("logs/one"), "(nothing)");
}

TEST(MigrationSupport, FirstCopyThatFailsEndsTheStepAndNotTheMigration) {
    SupportWorld world;
    world.oldFile("a", "1");
    world.oldFile("b", "2");
    world.oldFile("c", "3");
    world.items.failures.emplace("/data/Larkmere/b", kFull);
    EXPECT_EQ(world.support(), (Lines{"[Migration] ✅ AppSupport: a",
                                      "[Migration] ⚠ AppSupport error: No space left on device"}));
    EXPECT_EQ(world.fileHere("a"), "1");
    EXPECT_EQ(world.fileHere("b"), "(nothing)");
    EXPECT_EQ(world.fileHere("c"), "(nothing)");
    world.items.failures.clear();
    EXPECT_EQ(world.start(), Lines());
}

TEST(MigrationSupport, FolderThatCannotBeMadeEndsTheStep) {
    SupportWorld world;
    world.oldFile("a", "1");
    world.files.folderFailure = platform::FileError{13, "Permission denied"};
    EXPECT_EQ(world.support(), Lines{"[Migration] ⚠ AppSupport error: Permission denied"});
    EXPECT_TRUE(world.items.copies.empty());
}

TEST(MigrationSupport, FolderThatCannotBeListedEndsTheStepWithTheNewOneMade) {
    SupportWorld world;
    world.oldFile("a", "1");
    world.items.failures.emplace("/data/Larkmere", platform::FileError{13, "Permission denied"});
    EXPECT_EQ(world.support(), Lines{"[Migration] ⚠ AppSupport error: Permission denied"});
    EXPECT_TRUE(world.files.folders.contains("/data/Fernwick"));
}

TEST(MigrationSupport, FileInThePlaceOfTheOldFolderIsAnError) {
    SupportWorld world;
    world.files.files.insert_or_assign("/data/Larkmere", fakes::FakeFileSystem::File{"text", 0600});
    EXPECT_EQ(world.support(), Lines{"[Migration] ⚠ AppSupport error: Not a directory"});
}

TEST(MigrationSupport, SocketEndsTheStep) {
    SupportWorld world;
    world.oldFile("a", "1");
    world.items.special.insert("/data/Larkmere/b.socket");
    EXPECT_EQ(world.support(), (Lines{"[Migration] ✅ AppSupport: a",
                                      "[Migration] ⚠ AppSupport error: Operation not supported"}));
}

// As where a link leads nowhere: nothing exists there, and yet the place is taken.
TEST(MigrationSupport, LinkThatLeadsNowhereIsInTheWay) {
    SupportWorld world;
    world.oldFile("a", "1");
    world.files.links.emplace("/data/Fernwick/a", "nowhere");
    EXPECT_EQ(world.support(), Lines{"[Migration] ⚠ AppSupport error: File exists"});
}

TEST(MigrationSupport, AfterACrashOnlyTheRestIsCopied) {
    SupportWorld world;
    world.oldFile("a", "1");
    world.oldFile("b", "2");
    world.files.folders.insert("/data/Fernwick");
    world.files.files.insert_or_assign("/data/Fernwick/a", fakes::FakeFileSystem::File{"1", 0600});
    EXPECT_EQ(world.support(), Lines{"[Migration] ✅ AppSupport: b"});
    EXPECT_EQ(world.items.copies, Lines{"/data/Larkmere/b"});
}

} // namespace fernwick::tests
