#include "CloudWorld.h"

#include <gtest/gtest.h>

namespace fernwick::tests {
namespace {

TEST(Push, SwitchedOffItAnswersNoAtOnceAndChangesNothing) {
    CloudWorld world;
    world.open().pushToICloud(world.answer());
    EXPECT_EQ(world.told, Tellings({{false, ""}}));
    world.dispatch.runAll();
    EXPECT_EQ(world.label(), "Available");
    EXPECT_EQ(world.state().lastSyncDate, std::nullopt);
    EXPECT_EQ(world.cloud.synchronizations(), 0U);
}

TEST(Push, WithoutAnAccountItIsUnavailable) {
    CloudWorld world;
    world.openSharing();
    world.cloud.signIn(false);
    world.watchStatus();
    world.manager->pushToICloud(world.answer());
    world.dispatch.runAll();
    EXPECT_EQ(world.told, Tellings({{false, ""}}));
    EXPECT_EQ(world.statuses, Labels({"Available", "Not signed in to iCloud"}));
    EXPECT_EQ(world.state().lastSyncDate, std::nullopt);
    EXPECT_FALSE(world.state().isWorking);
}

TEST(Push, ASignedOutMachineKeepsListening) {
    CloudWorld world;
    world.openSharing();
    world.cloud.signIn(false);
    world.manager->pushToICloud();
    world.dispatch.runAll();
    EXPECT_EQ(world.label(), "Not signed in to iCloud");
    world.cloud.tell(std::vector<std::string>{});
    world.dispatch.runAll();
    EXPECT_EQ(world.label(), "Synced");
}

TEST(Push, SendsEveryStoredListAsItIs) {
    CloudWorld world;
    world.defaults.setData(kTunnels, "T");
    world.defaults.setData(kTags, "G");
    world.defaults.setData(kKeys, "K");
    world.defaults.setData(kProxies, std::string("\0P\xFF", 3));
    world.defaults.setData(kRules, "");
    world.openSharing().pushToICloud(world.answer());
    world.dispatch.runAll();
    EXPECT_EQ(world.told, Tellings({{true, ""}}));
    EXPECT_EQ(world.cloud.remote(), Texts({{"fernWick_tunnels_v2", "T"},
                                           {"fernWick_tags_v1", "G"},
                                           {"fernWick_keys_v1", "K"},
                                           {"fernWick_proxies_v1", std::string("\0P\xFF", 3)},
                                           {"fernWick_rules_v1", ""}}));
}

TEST(Push, WhatIsNotStoredLeavesTheEntryAsItIs) {
    CloudWorld world;
    world.openSharing();
    world.writeElsewhere("unrelated", "x");
    world.cloud.writeElsewhere(kCloudRules, "theirs");
    world.defaults.setData(kTunnels, "T");
    world.manager->pushToICloud();
    world.dispatch.runAll();
    EXPECT_EQ(world.cloud.remote().at("fernWick_rules_v1"), "theirs");
    EXPECT_EQ(world.cloud.remote().at("fernWick_tunnels_v2"), "T");
}

TEST(Push, GoesThroughTheStatusesInOrder) {
    CloudWorld world;
    world.defaults.setData(kTunnels, "T");
    world.openSharing();
    world.dispatch.advance(std::chrono::seconds(5));
    world.watchStatus();
    world.manager->pushToICloud();
    world.dispatch.holdGlobal(true);
    world.dispatch.runGlobal(); // the question for the account
    world.dispatch.runAll();
    EXPECT_EQ(world.statuses, Labels({"Available", "Syncing..."}));
    EXPECT_TRUE(world.state().isWorking);
    EXPECT_EQ(world.state().lastSyncDate, std::nullopt);
    world.dispatch.holdGlobal(false);
    world.dispatch.runAll();
    EXPECT_EQ(world.statuses, Labels({"Available", "Syncing...", "Synced"}));
    EXPECT_FALSE(world.state().isWorking);
    EXPECT_EQ(world.state().statusMessage, "Synced to iCloud ✓");
    EXPECT_TRUE(world.stampedNow());
}

TEST(Push, AStoreThatCannotWriteIsAnErrorWithADate) {
    CloudWorld world;
    world.openSharing();
    world.cloud.fail();
    world.watchStatus();
    world.manager->pushToICloud(world.answer());
    world.dispatch.runAll();
    EXPECT_EQ(world.told, Tellings({{false, ""}}));
    EXPECT_EQ(world.statuses, Labels({"Available", "Syncing...", "Error: Sync failed"}));
    EXPECT_EQ(world.state().statusMessage, "iCloud sync failed");
    EXPECT_FALSE(world.state().isWorking);
    EXPECT_TRUE(world.stampedNow());
}

TEST(Push, AnAccountThatCameSinceItWasLastAskedForCounts) {
    CloudWorld world;
    world.cloud.signIn(false);
    world.openSharing();
    EXPECT_EQ(world.label(), "Not signed in to iCloud");
    world.cloud.signIn();
    world.manager->pushToICloud(world.answer());
    world.dispatch.runAll();
    EXPECT_EQ(world.told, Tellings({{true, ""}}));
}

TEST(Push, AsksAndWritesOffTheMainThread) {
    CloudWorld world;
    world.openSharing();
    const auto before = world.cloud.questions();
    world.manager->pushToICloud();
    world.dispatch.runMain();
    EXPECT_EQ(world.cloud.questions(), before);
    world.dispatch.runGlobal();
    EXPECT_EQ(world.cloud.questions(), before + 1);
    const auto records = world.dispatch.records();
    EXPECT_EQ(records[records.size() - 2].priority, platform::Priority::userInitiated);
}

TEST(Push, TwoAtATimeBothGoThrough) {
    CloudWorld world;
    world.openSharing();
    world.manager->pushToICloud(world.answer());
    world.manager->pushToICloud(world.answer());
    world.dispatch.runAll();
    EXPECT_EQ(world.told, Tellings({{true, ""}, {true, ""}}));
    EXPECT_FALSE(world.state().isWorking);
}

TEST(Push, AManagerThatGoesMeanwhileTellsNothing) {
    CloudWorld world;
    world.openSharing().pushToICloud(world.answer());
    world.manager.reset();
    world.dispatch.runAll();
    EXPECT_TRUE(world.told.empty());

    world.openSharing().pushToICloud(world.answer());
    world.dispatch.holdGlobal(true);
    world.dispatch.runGlobal();
    world.dispatch.runAll(); // the lists wait to be written
    world.manager.reset();
    world.dispatch.holdGlobal(false);
    world.dispatch.runAll();
    EXPECT_TRUE(world.told.empty());
}

} // namespace
} // namespace fernwick::tests
