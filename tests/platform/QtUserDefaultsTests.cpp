// The preferences in files with a real writing thread behind them.
#include "FileDefaultsHarness.h"
#include "QtHarness.h"
#include "UserDefaultsContract.h"
#include "support/StuckDisk.h"
#include "support/WaitUntil.h"

#include <atomic>
#include <thread>

namespace fernwick::platform {

INSTANTIATE_TYPED_TEST_SUITE_P(FileOnThread, UserDefaultsContract, FileDefaultsHarness<QtHarness>);

TEST(FileUserDefaults, ManyChangesInARowEndInTheNewestState) {
    FileDefaultsHarness<QtHarness> harness;
    {
        const auto defaults = harness.open("com.example.Contract");
        for (std::int64_t number = 0; number < 2000; ++number) {
            defaults->set("number", {number});
        }
    }
    EXPECT_EQ(harness.open("com.example.Contract")->value("number"), PropertyValue{std::int64_t{1999}});
}

// Of the changes, all but the first come while its write waits for the disk; one write more has them all.
TEST(FileUserDefaults, StuckDiskHoldsUpNoChangeAndOneWriteMakesUpForAll) {
    constexpr std::int64_t kChanges = 200;
    FileDefaultsHarness<QtHarness> harness;
    harness.open("com.example.Contract")->set("number", {std::int64_t{0}});
    const auto defaults = harness.open("com.example.Contract");
    fakes::StuckDisk disk;
    defaults->set("number", {std::int64_t{1}});
    ASSERT_TRUE(fakes::waitUntil([&] { return disk.holdsSomeone(); }));
    for (std::int64_t number = 2; number <= kChanges; ++number) {
        defaults->set("number", {number});
    }
    EXPECT_EQ(defaults->value("number"), PropertyValue{kChanges});
    EXPECT_EQ(harness.open("com.example.Contract")->value("number"), PropertyValue{std::int64_t{0}});
    disk.release();
    defaults->synchronize();
    EXPECT_EQ(harness.open("com.example.Contract")->value("number"), PropertyValue{kChanges});
    EXPECT_EQ(disk.syncs(), 2 * 2) << "each write synchronises the file and its folder";
}

TEST(FileUserDefaults, SynchronizingWaitsForAStuckDisk) {
    FileDefaultsHarness<QtHarness> harness;
    const auto defaults = harness.open("com.example.Contract");
    fakes::StuckDisk disk;
    defaults->set("number", {std::int64_t{1}});
    std::atomic<bool> released = false;
    std::thread repair([&] {
        EXPECT_TRUE(fakes::waitUntil([&] { return disk.holdsSomeone(); }));
        released = true;
        disk.release();
    });
    defaults->synchronize();
    EXPECT_TRUE(released);
    repair.join();
    EXPECT_EQ(harness.open("com.example.Contract")->value("number"), PropertyValue{std::int64_t{1}});
}

} // namespace fernwick::platform
