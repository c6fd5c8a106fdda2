#include "CloudWorld.h"

#include <gtest/gtest.h>

namespace fernwick::tests {
namespace {

using std::chrono::milliseconds;

// A manager that shares the catalogue, and another machine's lists that it has not seen.
struct PullWorld : CloudWorld {
    explicit PullWorld(const Texts& theirs) {
        openSharing();
        manager->stopICloudObserver(); // so that only the pull brings them
        for (const auto& [key, bytes] : theirs) {
            cloud.writeElsewhere(key, bytes);
        }
    }

    void pull() {
        manager->pullFromICloud(answer());
        dispatch.advance(milliseconds(1000));
    }
};

TEST(Pull, SwitchedOffItAnswersNoAtOnceAndChangesNothing) {
    CloudWorld world;
    world.open().pullFromICloud(world.answer());
    EXPECT_EQ(world.told, Tellings({{false, ""}}));
    world.dispatch.advance(milliseconds(2000));
    EXPECT_EQ(world.label(), "Available");
    EXPECT_EQ(world.cloud.synchronizations(), 0U);
}

TEST(Pull, WithoutAnAccountTheStatusStaysAsItIs) {
    CloudWorld world;
    world.openSharing();
    world.cloud.signIn(false);
    world.watchStatus();
    world.manager->pullFromICloud(world.answer());
    world.dispatch.advance(milliseconds(2000));
    EXPECT_EQ(world.told, Tellings({{false, ""}}));
    EXPECT_EQ(world.statuses, Labels{"Available"});
    EXPECT_FALSE(world.state().isWorking);
    EXPECT_EQ(world.state().lastSyncDate, std::nullopt);
}

TEST(Pull, GivesTheStoreASecondToFetch) {
    PullWorld world({{"fernWick_tunnels_v2", "theirs"}});
    world.watchStatus();
    world.manager->pullFromICloud(world.answer());
    world.dispatch.advance(milliseconds(999));
    EXPECT_EQ(world.statuses, Labels({"Available", "Syncing..."}));
    EXPECT_TRUE(world.state().isWorking);
    EXPECT_EQ(world.stored(kTunnels), "(nothing)");
    world.dispatch.advance(milliseconds(1));
    EXPECT_EQ(world.statuses, Labels({"Available", "Syncing...", "Synced"}));
    EXPECT_FALSE(world.state().isWorking);
    EXPECT_EQ(world.stored(kTunnels), "theirs");
    EXPECT_EQ(world.told, Tellings({{true, ""}}));
    EXPECT_TRUE(world.stampedNow());
}

TEST(Pull, ReplacesEveryListThatTheStoreHas) {
    PullWorld world({{"fernWick_tunnels_v2", "T"},
                     {"fernWick_tags_v1", "G"},
                     {"fernWick_keys_v1", "K"},
                     {"fernWick_proxies_v1", listOf<ProxyConfig>(2)},
                     {"fernWick_rules_v1", listOf<AppRule>(3)}});
    world.pull();
    EXPECT_EQ(world.stored(kTunnels), "T");
    EXPECT_EQ(world.stored(kTags), "G");
    EXPECT_EQ(world.stored(kKeys), "K");
    EXPECT_EQ(world.rules.proxies().size(), 2U);
    EXPECT_EQ(world.rules.rules().size(), 3U);
    EXPECT_EQ(world.state().statusMessage, "Pulled from iCloud ✓");
    EXPECT_EQ(world.updated, 1);
}

TEST(Pull, RulesAloneAreNothingThoughTheyAreWritten) {
    PullWorld world({{"fernWick_rules_v1", listOf<AppRule>(3)}});
    world.pull();
    EXPECT_EQ(world.told, Tellings({{false, ""}}));
    EXPECT_EQ(world.state().statusMessage, "Nothing to pull from iCloud");
    EXPECT_EQ(world.label(), "Synced");
    EXPECT_TRUE(world.stampedNow());
    EXPECT_EQ(world.stored(kRules), listOf<AppRule>(3));
    EXPECT_EQ(world.reloaded, 0);
    EXPECT_EQ(world.updated, 0);
}

TEST(Pull, TagsAndKeysAloneAreNothingThoughTheyAreWritten) {
    PullWorld world({{"fernWick_tags_v1", "G"}, {"fernWick_keys_v1", "K"}});
    world.pull();
    EXPECT_EQ(world.told, Tellings({{false, ""}}));
    EXPECT_EQ(world.stored(kTags), "G");
    EXPECT_EQ(world.stored(kKeys), "K");
}

TEST(Pull, ProxiesAloneAreSomething) {
    PullWorld world({{"fernWick_proxies_v1", listOf<ProxyConfig>(1)}});
    world.defaults.setData(kTunnels, "mine");
    world.pull();
    EXPECT_EQ(world.told, Tellings({{true, ""}}));
    EXPECT_EQ(world.reloaded, 1);
    EXPECT_EQ(world.stored(kTunnels), "mine");
}

TEST(Pull, AnEmptyStoreHasNothing) {
    PullWorld world({});
    world.defaults.setData(kTunnels, "mine");
    world.pull();
    EXPECT_EQ(world.told, Tellings({{false, ""}}));
    EXPECT_EQ(world.label(), "Synced");
    EXPECT_EQ(world.stored(kTunnels), "mine");
}

TEST(Pull, APushMayRunBesideIt) {
    PullWorld world({{"fernWick_rules_v1", "theirs"}});
    world.defaults.setData(kTunnels, "mine");
    world.manager->pullFromICloud(world.answer());
    world.manager->pushToICloud(world.answer());
    world.dispatch.advance(milliseconds(1000));
    EXPECT_EQ(world.told, Tellings({{true, ""}, {true, ""}}));
    EXPECT_EQ(world.cloud.remote().at("fernWick_tunnels_v2"), "mine");
    EXPECT_FALSE(world.state().isWorking);
}

TEST(Pull, AManagerThatGoesMeanwhileStoresAndTellsNothing) {
    PullWorld world({{"fernWick_tunnels_v2", "theirs"}});
    world.manager->pullFromICloud(world.answer());
    world.dispatch.advance(milliseconds(500));
    world.manager.reset();
    world.dispatch.advance(milliseconds(1000));
    EXPECT_TRUE(world.told.empty());
    EXPECT_EQ(world.stored(kTunnels), "(nothing)");
}

} // namespace
} // namespace fernwick::tests
