// Restoring from real files that are no backups, some of them large.
#include "SyncWorld.h"
#include "platform/posix/PosixFileSystem.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <sys/stat.h>

namespace fernwick::tests {
namespace {

constexpr std::size_t kHundredMegabytes = 100'000'000;

// A manager whose files are real, and whose lists must all survive.
struct RestoreFiles : testing::Test {
    RestoreFiles() {
        for (const auto key : {kTunnels, kTags, kKeys, kProxies, kRules}) {
            world.defaults.setData(key, "old");
        }
        world.manager = std::make_unique<SyncManager>(
            SyncServices{world.defaults, world.dispatch, world.clock, files, world.dialogs, world.cloud,
                         world.notifications, world.host, world.rules});
        world.dispatch.runAll();
    }

    // What restoring from `path` is told as. Fails when a list was touched.
    std::string restore(const std::string& path) {
        world.manager->restoreBackup(path, world.completion());
        world.dispatch.runAll();
        for (const auto key : {kTunnels, kTags, kKeys, kProxies, kRules}) {
            EXPECT_EQ(world.stored(key), "old") << key;
        }
        EXPECT_EQ(world.told.size(), 1U);
        return world.told.empty() || world.told.front().succeeded ? "(no failure)" : world.told.front().message;
    }

    std::string restoreBytes(const std::string& bytes) {
        folder.write("in.backup", bytes);
        return restore(folder / "in.backup");
    }

    fakes::TemporaryFolder folder;
    platform::PosixFileSystem files;
    SyncWorld world;
};

} // namespace

TEST_F(RestoreFiles, AHundredMegabytesOfOpenBracketsAreNoBackup) {
    EXPECT_EQ(restoreBytes(std::string(kHundredMegabytes, '[')), "Unrecognised backup format");
}

TEST_F(RestoreFiles, AHundredMegabytesThatBreakOffAreNoBackup) {
    EXPECT_EQ(restoreBytes("{\"tunnels\":\"" + std::string(kHundredMegabytes, 'A')),
              "Unrecognised backup format");
}

TEST_F(RestoreFiles, AHundredMegabytesOfNothingAreNoBackup) {
    EXPECT_EQ(restoreBytes(std::string(kHundredMegabytes, '\0')), "Unrecognised backup format");
}

TEST_F(RestoreFiles, AFileBeyondAllMeasureIsNotRead) {
    folder.write("in.backup", "");
    std::filesystem::resize_file(folder / "in.backup", 300'000'000'000); // of which nothing is on the disk
    EXPECT_EQ(restore(folder / "in.backup"), "Cannot read file");
}

TEST_F(RestoreFiles, AFolderIsNotRead) {
    EXPECT_EQ(restore(folder.path()), "Cannot read file");
}

TEST_F(RestoreFiles, APipeIsNotWaitedFor) {
    ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
    EXPECT_EQ(restore(folder / "pipe"), "Cannot read file");
}

} // namespace fernwick::tests
