// What other machines change, and the switch that lets it in.
#include "CloudWorld.h"

#include <gtest/gtest.h>

namespace fernwick::tests {
namespace {

using Changed = std::vector<std::string>;

TEST(CloudChange, IsTakenOverAsItComes) {
    CloudWorld world;
    world.openSharing();
    world.writeElsewhere(kCloudTunnels, "theirs");
    EXPECT_EQ(world.stored(kTunnels), "theirs");
    EXPECT_EQ(world.label(), "Synced");
    EXPECT_EQ(world.state().statusMessage, "Received sync from another device");
    EXPECT_TRUE(world.stampedNow());
    EXPECT_EQ(world.updated, 1);
    EXPECT_EQ(world.reloaded, 0);
}

TEST(CloudChange, EachListGoesToItsKey) {
    CloudWorld world;
    world.openSharing();
    world.writeElsewhere(kCloudTags, "G");
    world.writeElsewhere(kCloudKeys, "K");
    world.writeElsewhere(kCloudProxies, "P");
    world.writeElsewhere(kCloudRules, "R");
    EXPECT_EQ(world.stored(kTags), "G");
    EXPECT_EQ(world.stored(kKeys), "K");
    EXPECT_EQ(world.stored(kProxies), "P");
    EXPECT_EQ(world.stored(kRules), "R");
}

TEST(CloudChange, ProxiesOrRulesHaveBothReadAnew) {
    CloudWorld world;
    world.openSharing();
    world.writeElsewhere(kCloudProxies, listOf<ProxyConfig>(2));
    EXPECT_EQ(world.reloaded, 1);
    EXPECT_EQ(world.rules.proxies().size(), 2U);
    world.writeElsewhere(kCloudRules, listOf<AppRule>(3));
    EXPECT_EQ(world.reloaded, 2);
    EXPECT_EQ(world.rules.rules().size(), 3U);
}

TEST(CloudChange, TheyAreReadLaterAndNotInTheMiddle) {
    CloudWorld world;
    world.openSharing();
    world.cloud.set(kCloudRules, platform::Data(listOf<AppRule>(3)));
    world.manager->handleICloudChange(Changed{std::string(kCloudRules)});
    EXPECT_EQ(world.reloaded, 0);
    EXPECT_EQ(world.updated, 1);
    world.dispatch.runMain();
    EXPECT_EQ(world.reloaded, 1);
}

TEST(CloudChange, AnUnknownKeyStillCountsAsASync) {
    CloudWorld world;
    world.openSharing();
    world.writeElsewhere("somebody_elses", "x");
    EXPECT_EQ(world.label(), "Synced");
    EXPECT_EQ(world.state().statusMessage, "Received sync from another device");
    EXPECT_TRUE(world.stampedNow());
    EXPECT_EQ(world.updated, 1);
    EXPECT_EQ(world.stored(kTunnels), "(nothing)");
}

TEST(CloudChange, NoKeysAtAllStillCountAsASync) {
    CloudWorld world;
    world.openSharing().handleICloudChange(Changed{});
    EXPECT_EQ(world.label(), "Synced");
    EXPECT_EQ(world.updated, 1);
}

TEST(CloudChange, WithoutAListOfKeysNothingHappens) {
    CloudWorld world;
    world.openSharing().handleICloudChange(std::nullopt);
    EXPECT_EQ(world.label(), "Available");
    EXPECT_EQ(world.state().statusMessage, "");
    EXPECT_EQ(world.state().lastSyncDate, std::nullopt);
    EXPECT_EQ(world.updated, 0);
}

TEST(CloudChange, AnEntryThatIsGoneLeavesTheListAsItIs) {
    CloudWorld world;
    world.defaults.setData(kTunnels, "mine");
    world.openSharing().handleICloudChange(Changed{std::string(kCloudTunnels), std::string(kCloudRules)});
    world.dispatch.runAll();
    EXPECT_EQ(world.stored(kTunnels), "mine");
    EXPECT_EQ(world.reloaded, 0);
    EXPECT_EQ(world.label(), "Synced");
}

TEST(CloudChange, WhileSharingIsOffNobodyListens) {
    CloudWorld world;
    world.open();
    world.writeElsewhere(kCloudTunnels, "theirs");
    EXPECT_EQ(world.stored(kTunnels), "(nothing)");
    EXPECT_EQ(world.cloud.listeners(), 0U);
    EXPECT_EQ(world.label(), "Available");
}

TEST(CloudChange, EndsWithTheManager) {
    CloudWorld world;
    world.openSharing();
    world.cloud.writeElsewhere(kCloudTunnels, "theirs");
    world.cloud.requestSynchronize();
    world.manager.reset();
    world.dispatch.runAll();
    EXPECT_EQ(world.stored(kTunnels), "(nothing)");
}

TEST(SyncSwitch, OnListensAndSendsThisMachinesLists) {
    CloudWorld world;
    world.defaults.setData(kTunnels, "mine");
    world.open();
    world.watchStatus();
    world.manager->setSyncWithiCloud(true);
    EXPECT_TRUE(world.manager->syncWithiCloud());
    EXPECT_EQ(world.defaults.value("syncWithiCloud"), platform::PropertyValue{true});
    EXPECT_EQ(world.cloud.listeners(), 1U);
    world.dispatch.runAll();
    EXPECT_EQ(world.statuses, Labels({"Available", "Syncing...", "Synced"}));
    EXPECT_EQ(world.cloud.remote(), Texts({{"fernWick_tunnels_v2", "mine"}}));
}

// The store is read by the start of listening as well; what was there must not come back from it, in whichever
// order the two end.
TEST(SyncSwitch, OnGoesOverWhatTheCloudHasOnBothSides) {
    for (const bool known : {false, true}) {
        CloudWorld world;
        world.defaults.setData(kTunnels, "mine");
        world.cloud.signIn(known);
        world.open();
        world.cloud.signIn();
        world.cloud.writeElsewhere(kCloudTunnels, "theirs, and newer");
        world.manager->setSyncWithiCloud(true);
        world.dispatch.runAll();
        EXPECT_EQ(world.cloud.remote(), Texts({{"fernWick_tunnels_v2", "mine"}})) << known;
        EXPECT_EQ(world.stored(kTunnels), "mine") << known;
    }
}

TEST(SyncSwitch, ChangesThatWaitForAPushComeThroughWithoutAnAccount) {
    CloudWorld world;
    world.openSharing();
    world.cloud.set(kCloudTunnels, platform::Data("theirs"));
    world.cloud.signIn(false);
    world.manager->pushToICloud();
    world.cloud.tell(Changed{std::string(kCloudTunnels)});
    world.dispatch.runMain();
    EXPECT_EQ(world.stored(kTunnels), "(nothing)");
    world.dispatch.runAll();
    EXPECT_EQ(world.stored(kTunnels), "theirs");
}

TEST(SyncSwitch, OnWithAnEmptyCatalogueLeavesTheCloudAlone) {
    CloudWorld world;
    world.cloud.writeElsewhere(kCloudTunnels, "theirs");
    world.open().setSyncWithiCloud(true);
    world.dispatch.runAll();
    EXPECT_EQ(world.cloud.remote(), Texts({{"fernWick_tunnels_v2", "theirs"}}));
    EXPECT_EQ(world.label(), "Synced");
}

TEST(SyncSwitch, OffEndsListeningAndIsAvailableWhateverTheAccount) {
    CloudWorld world;
    world.openSharing();
    world.cloud.signIn(false);
    world.manager->refreshICloudStatus();
    world.dispatch.runAll();
    EXPECT_EQ(world.label(), "Not signed in to iCloud");
    world.manager->setSyncWithiCloud(false);
    EXPECT_EQ(world.label(), "Available");
    world.cloud.tell(Changed{});
    world.dispatch.runAll();
    EXPECT_EQ(world.label(), "Available");
}

TEST(SyncSwitch, OnTwiceListensTwiceForGood) {
    CloudWorld world;
    world.open().setSyncWithiCloud(true);
    world.manager->setSyncWithiCloud(true);
    world.dispatch.runAll();
    world.updated = 0;
    world.writeElsewhere(kCloudTunnels, "theirs");
    EXPECT_EQ(world.updated, 2);
    world.manager->setSyncWithiCloud(false);
    world.writeElsewhere(kCloudTunnels, "theirs again");
    EXPECT_EQ(world.updated, 3);
    EXPECT_EQ(world.stored(kTunnels), "theirs again");
}

TEST(SyncSwitch, OffBeforeTheAnswerStaysAvailable) {
    CloudWorld world;
    world.cloud.signIn(false);
    world.open().setSyncWithiCloud(true);
    world.manager->setSyncWithiCloud(false);
    world.dispatch.runAll();
    EXPECT_EQ(world.label(), "Available");
}

TEST(SyncSwitch, AnswerOfAnotherTypeIsOff) {
    CloudWorld world;
    world.defaults.set("syncWithiCloud", {std::string("true")});
    EXPECT_FALSE(world.open().syncWithiCloud());
}

} // namespace
} // namespace fernwick::tests
