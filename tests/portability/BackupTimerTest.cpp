#include "SyncWorld.h"

#include <gtest/gtest.h>

#include <limits>

namespace fernwick::tests {
namespace {

using std::chrono::hours;
using std::chrono::minutes;

struct TimerWorld : SyncWorld {
    TimerWorld() { defaults.setData(kTunnels, "[]"); }

    // The last backup was so long ago.
    void lastBackup(hours age) { defaults.set("lastBackupTS", {ago(age).secondsSinceUnixEpoch()}); }

    // Switches backups on, as the page does.
    void switchOn(std::int64_t interval = 24) {
        manager->settings().setBackupIntervalHrs(interval);
        manager->settings().setEnableAutoBackup(true);
        manager->configureAutoBackupTimer();
    }

    [[nodiscard]] std::size_t backups() const { return files.files.size(); }
};

TEST(BackupTimer, IsOffAtFirst) {
    TimerWorld world;
    world.open();
    EXPECT_FALSE(world.manager->settings().enableAutoBackup());
    EXPECT_EQ(world.manager->settings().backupIntervalHrs(), 24);
    EXPECT_EQ(world.manager->settings().backupPath(), "");
    EXPECT_EQ(world.manager->settings().maxBackupCount(), 10);
    EXPECT_EQ(world.dispatch.pendingTimers(), 0U);
    world.dispatch.advance(hours(1000));
    EXPECT_EQ(world.backups(), 0U);
}

TEST(BackupTimer, SwitchedOnForTheFirstTimeBacksUpAtOnce) {
    TimerWorld world;
    world.open();
    world.switchOn();
    EXPECT_EQ(world.backups(), 1U);
    EXPECT_EQ(world.dispatch.pendingTimers(), 1U);
}

TEST(BackupTimer, AfterTwoDaysItBacksUpAtOnceAndOnce) {
    TimerWorld world;
    world.lastBackup(hours(48));
    world.open();
    world.switchOn();
    EXPECT_EQ(world.backups(), 1U);
}

TEST(BackupTimer, AfterAnHourItWaitsForAWholeIntervalFromItsStart) {
    TimerWorld world;
    world.lastBackup(hours(1));
    world.open();
    world.switchOn();
    world.dispatch.advance(hours(24) - minutes(1));
    EXPECT_EQ(world.backups(), 0U);
    world.dispatch.advance(minutes(1));
    EXPECT_EQ(world.backups(), 1U);
}

TEST(BackupTimer, AWholeIntervalAgoIsLongEnough) {
    TimerWorld world;
    world.lastBackup(hours(24));
    world.open();
    world.switchOn();
    EXPECT_EQ(world.backups(), 1U);
}

TEST(BackupTimer, ALastBackupInTheFutureIsNoReasonForOne) {
    TimerWorld world;
    world.lastBackup(hours(-5));
    world.open();
    world.switchOn();
    EXPECT_EQ(world.backups(), 0U);
}

TEST(BackupTimer, BacksUpAtEachInterval) {
    TimerWorld world;
    world.open();
    world.switchOn(6);
    for (std::size_t count = 1; count <= 4; ++count) {
        EXPECT_EQ(world.backups(), count);
        EXPECT_EQ(world.manager->state().lastBackupDate, world.clock.now());
        world.dispatch.advance(hours(6));
    }
}

TEST(BackupTimer, GoesOnAfterAFailure) {
    TimerWorld world;
    world.open();
    world.files.writeFailure = platform::FileError{28, "No space left on device"};
    world.switchOn(1);
    world.dispatch.advance(hours(3));
    EXPECT_EQ(world.backups(), 0U);
    EXPECT_EQ(world.manager->state().statusMessage, "");
    world.files.writeFailure.reset();
    world.dispatch.advance(hours(1));
    EXPECT_EQ(world.backups(), 1U);
}

TEST(BackupTimer, SwitchedOffItEnds) {
    TimerWorld world;
    world.open();
    world.switchOn(1);
    world.manager->settings().setEnableAutoBackup(false);
    world.manager->configureAutoBackupTimer();
    EXPECT_EQ(world.dispatch.pendingTimers(), 0U);
    world.dispatch.advance(hours(10));
    EXPECT_EQ(world.backups(), 1U);
}

TEST(BackupTimer, AnotherIntervalReplacesTheTimer) {
    TimerWorld world;
    world.open();
    world.switchOn(1);
    world.dispatch.advance(minutes(30));
    world.switchOn(12);
    EXPECT_EQ(world.dispatch.pendingTimers(), 1U);
    world.dispatch.advance(hours(11));
    EXPECT_EQ(world.backups(), 1U);
    world.dispatch.advance(hours(1));
    EXPECT_EQ(world.backups(), 2U);
}

TEST(BackupTimer, IsStartedWithTheManagerWhereItIsOn) {
    TimerWorld world;
    world.defaults.set("enableAutoBackup", {true});
    world.lastBackup(hours(100));
    world.make();
    EXPECT_EQ(world.backups(), 1U);
    EXPECT_EQ(world.dispatch.pendingTimers(), 1U);
}

TEST(BackupTimer, TheLastDateIsShownFromTheStart) {
    TimerWorld world;
    world.lastBackup(hours(3));
    world.make();
    ASSERT_TRUE(world.manager->state().lastBackupDate.has_value());
    EXPECT_NEAR(world.manager->state().lastBackupDate->secondsSinceReference,
                world.ago(hours(3)).secondsSinceReference, 1e-3);
}

TEST(BackupTimer, ATimeThatIsNoneIsNotShown) {
    for (const double seconds : {0.0, -1.0, std::numeric_limits<double>::infinity()}) {
        TimerWorld world;
        world.defaults.set("lastBackupTS", {seconds});
        EXPECT_EQ(world.make().state().lastBackupDate, std::nullopt) << seconds;
    }
}

TEST(BackupTimer, EndsWithTheManager) {
    TimerWorld world;
    world.open();
    world.switchOn(1);
    world.manager.reset();
    EXPECT_EQ(world.dispatch.pendingTimers(), 0U);
    world.dispatch.advance(hours(10));
    EXPECT_EQ(world.backups(), 1U);
}

TEST(BackupTimer, SettingsOfAnotherTypeCountAsMissing) {
    TimerWorld world;
    world.defaults.set("enableAutoBackup", {std::string("yes")});
    world.defaults.set("backupIntervalHrs", {std::string("6")});
    world.defaults.set("backupPath", {true});
    world.defaults.set("maxBackupCount", {2.5});
    world.open();
    EXPECT_FALSE(world.manager->settings().enableAutoBackup());
    EXPECT_EQ(world.manager->settings().backupIntervalHrs(), 24);
    EXPECT_EQ(world.manager->settings().backupPath(), "");
    EXPECT_EQ(world.manager->settings().maxBackupCount(), 10);
}

TEST(BackupTimer, EachSettingTellsThatItChanged) {
    TimerWorld world;
    world.open();
    int changes = 0;
    const auto watching = world.manager->changed.connect([&] { ++changes; });
    world.manager->settings().setEnableAutoBackup(true);
    world.manager->settings().setBackupIntervalHrs(72);
    world.manager->settings().setBackupPath("/media/stick");
    world.manager->settings().setMaxBackupCount(3);
    EXPECT_EQ(changes, 4);
    EXPECT_EQ(world.dispatch.pendingTimers(), 0U);
    EXPECT_EQ(world.manager->settings().backupIntervalHrs(), 72);
}

// As nothing in the window can set it: at the most a file a second, since faster ones have the same name.
TEST(BackupTimer, AnIntervalOfNothingIsASecond) {
    TimerWorld world;
    world.open().settings().setMaxBackupCount(100);
    world.switchOn(0);
    EXPECT_EQ(world.backups(), 1U);
    world.dispatch.advance(std::chrono::seconds(5));
    EXPECT_EQ(world.backups(), 6U);
}

TEST(BackupTimer, AnIntervalOfAgesNeverComes) {
    TimerWorld world;
    world.open();
    world.switchOn(std::numeric_limits<std::int64_t>::max() / 3600);
    world.dispatch.advance(hours(24 * 365));
    EXPECT_EQ(world.backups(), 1U);
}

TEST(BackupTimerDeathTest, AnIntervalBeyondTheNumbersIsAFault) {
    for (const auto interval :
         {std::numeric_limits<std::int64_t>::max() / 3600 + 1, std::numeric_limits<std::int64_t>::min()}) {
        TimerWorld world;
        world.open();
        EXPECT_DEATH(world.switchOn(interval),
                     "backupIntervalHrs is more than the seconds that a number holds");
    }
}

} // namespace
} // namespace fernwick::tests
