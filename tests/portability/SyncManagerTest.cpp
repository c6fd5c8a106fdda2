// The start of the manager, and the status of the account.
#include "CloudWorld.h"

#include <gtest/gtest.h>

namespace fernwick::tests {
namespace {

TEST(SyncManager, StartsWithNothingToShow) {
    CloudWorld world;
    world.make();
    EXPECT_EQ(world.label(), "Checking...");
    EXPECT_TRUE(world.state().backupEntries.empty());
    EXPECT_EQ(world.state().lastBackupDate, std::nullopt);
    EXPECT_EQ(world.state().lastSyncDate, std::nullopt);
    EXPECT_EQ(world.state().statusMessage, "");
    EXPECT_FALSE(world.state().isWorking);
    EXPECT_FALSE(world.manager->syncWithiCloud());
}

TEST(SyncManager, StartsWithWhatIsStored) {
    CloudWorld world;
    world.defaults.set("lastSyncTS", {support::Date::kUnixEpochOffset + 60});
    world.defaults.set("lastBackupTS", {support::Date::kUnixEpochOffset + 30});
    world.putFile(std::string(kDefaultFolder) + "/Fernwick_1", "{}");
    world.make();
    EXPECT_EQ(world.state().lastSyncDate, support::Date{60});
    EXPECT_EQ(world.state().lastBackupDate, support::Date{30});
    EXPECT_EQ(world.listedNames(), std::vector<std::string>{"Fernwick_1"});
}

TEST(SyncManager, TheStartNeitherPushesNorPulls) {
    CloudWorld world;
    world.defaults.setData(kTunnels, "mine");
    world.openSharing();
    world.dispatch.advance(std::chrono::seconds(10));
    EXPECT_TRUE(world.cloud.remote().empty());
    EXPECT_EQ(world.cloud.listeners(), 1U);
    EXPECT_EQ(world.cloud.synchronizations(), 1U);
    EXPECT_EQ(world.stored(kTunnels), "mine");
    EXPECT_EQ(world.label(), "Available");
}

TEST(SyncManager, TheStartTakesOverWhatOthersWroteMeanwhile) {
    CloudWorld world;
    world.defaults.setData(kTunnels, "mine");
    world.cloud.writeElsewhere(kCloudTunnels, "theirs");
    world.openSharing();
    EXPECT_EQ(world.stored(kTunnels), "theirs");
    EXPECT_EQ(world.state().statusMessage, "Received sync from another device");
}

TEST(SyncManager, TheAccountIsAskedForInTheBackground) {
    CloudWorld world;
    world.make();
    EXPECT_EQ(world.cloud.questions(), 0U);
    EXPECT_EQ(world.dispatch.records().at(0).kind, fakes::FakeDispatch::Record::Kind::global);
    EXPECT_EQ(world.dispatch.records().at(0).priority, platform::Priority::normal);
    world.dispatch.runAll();
    EXPECT_EQ(world.label(), "Available");
}

TEST(SyncManager, ARefreshShowsCheckingFirst) {
    CloudWorld world;
    world.openSharing().pushToICloud();
    world.dispatch.runAll();
    world.cloud.signIn(false);
    world.watchStatus();
    world.manager->refreshICloudStatus();
    world.dispatch.runAll();
    EXPECT_EQ(world.statuses, Labels({"Synced", "Checking...", "Not signed in to iCloud"}));
}

TEST(SyncManager, GoesWithItsQuestionsOpen) {
    CloudWorld world;
    world.make();
    world.manager.reset();
    world.dispatch.runAll();
    EXPECT_EQ(world.cloud.questions(), 1U);
    EXPECT_EQ(world.dispatch.queuedMain(), 0U);
}

TEST(SyncManager, KnowsTheKeysOfTheListsThatFollowAtOnce) {
    EXPECT_EQ(SyncManager::proxiesUDKey, ProxyRuleStore::kProxiesKey);
    EXPECT_EQ(SyncManager::rulesUDKey, ProxyRuleStore::kRulesKey);
    EXPECT_EQ(CloudSync::iCloudTunnelKey, kCloudTunnels);
    EXPECT_EQ(CloudSync::iCloudTagKey, kCloudTags);
    EXPECT_EQ(CloudSync::iCloudKeyKey, kCloudKeys);
    EXPECT_EQ(CloudSync::iCloudProxiesKey, kCloudProxies);
    EXPECT_EQ(CloudSync::iCloudRulesKey, kCloudRules);
}

} // namespace
} // namespace fernwick::tests
