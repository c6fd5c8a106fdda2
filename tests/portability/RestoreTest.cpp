#include "SyncWorld.h"

#include <gtest/gtest.h>

namespace fernwick::tests {
namespace {

constexpr const char* kPath = "/home/someone/in.backup";

// A catalogue in which every list has a text of its own.
struct RestoreWorld : SyncWorld {
    RestoreWorld() {
        for (const auto key : {kTunnels, kTags, kKeys, kProxies, kRules}) {
            defaults.setData(key, "old " + std::string(key));
        }
        dispatch.runAll();
        open();
        reloaded = 0;
    }

    void restore(std::string bytes) {
        putFile(kPath, std::move(bytes));
        manager->restoreBackup(kPath, completion());
    }

    [[nodiscard]] std::vector<std::string> changedKeys() const {
        std::vector<std::string> keys;
        for (const auto key : {kTunnels, kTags, kKeys, kProxies, kRules}) {
            if (stored(key) != "old " + std::string(key)) {
                keys.emplace_back(key);
            }
        }
        return keys;
    }
};

using Keys = std::vector<std::string>;

std::string member(std::string_view name, std::string_view bytes) {
    return "\"" + std::string(name) + "\":\"" + base64(bytes) + "\"";
}

TEST(Restore, AnUnreadableFileChangesNothing) {
    RestoreWorld world;
    world.manager->restoreBackup("/nowhere", world.completion());
    world.files.broken.insert(kPath);
    world.restore("[]");
    EXPECT_EQ(world.told, Tellings({{false, "Cannot read file"}, {false, "Cannot read file"}}));
    EXPECT_EQ(world.changedKeys(), Keys());
}

TEST(Restore, ReplacesEveryListOfTheFile) {
    RestoreWorld world;
    world.restore("{" + member("rules", "R") + "," + member("proxies", "P") + "," + member("keys", "K") + "," +
                  member("tags", "G") + "," + member("tunnels", "T") + "}");
    EXPECT_EQ(world.stored(kTunnels), "T");
    EXPECT_EQ(world.stored(kTags), "G");
    EXPECT_EQ(world.stored(kKeys), "K");
    EXPECT_EQ(world.stored(kProxies), "P");
    EXPECT_EQ(world.stored(kRules), "R");
}

TEST(Restore, IsToldATenthOfASecondLaterWhenProxiesAndRulesFollowed) {
    RestoreWorld world;
    world.restore("{" + member("tunnels", "[]") + "," + member("proxies", listOf<ProxyConfig>(2)) + "}");
    world.dispatch.advance(std::chrono::milliseconds(99));
    EXPECT_TRUE(world.told.empty());
    EXPECT_EQ(world.updated, 0);
    EXPECT_EQ(world.reloaded, 1);
    EXPECT_EQ(world.rules.proxies().size(), 2U);
    world.dispatch.advance(std::chrono::milliseconds(1));
    EXPECT_EQ(world.told, Tellings({{true, "Restore successful"}}));
    EXPECT_EQ(world.updated, 1);
}

TEST(Restore, RulesAloneAreWrittenButAreNoBackup) {
    RestoreWorld world;
    world.restore("{" + member("rules", listOf<AppRule>(1)) + "}");
    world.dispatch.advance(std::chrono::seconds(1));
    EXPECT_EQ(world.told, Tellings({{false, "Unrecognised backup format"}}));
    EXPECT_EQ(world.changedKeys(), Keys{std::string(kRules)});
    EXPECT_EQ(world.reloaded, 0);
    EXPECT_EQ(world.updated, 0);
}

TEST(Restore, TagsAndKeysAloneAreWrittenButAreNoBackup) {
    RestoreWorld world;
    world.restore("{" + member("keys", "K") + "," + member("tags", "G") + "}");
    EXPECT_EQ(world.told, Tellings({{false, "Unrecognised backup format"}}));
    EXPECT_EQ(world.changedKeys(), Keys({std::string(kTags), std::string(kKeys)}));
}

TEST(Restore, ProxiesAloneAreABackup) {
    RestoreWorld world;
    world.restore("{" + member("proxies", listOf<ProxyConfig>(1)) + "}");
    world.dispatch.advance(std::chrono::seconds(1));
    EXPECT_EQ(world.told, Tellings({{true, "Restore successful"}}));
    EXPECT_EQ(world.changedKeys(), Keys{std::string(kProxies)});
    EXPECT_EQ(world.reloaded, 1);
}

TEST(Restore, TunnelsThatAreNoBase64AreNotStored) {
    RestoreWorld world;
    world.restore(R"({"tunnels":"W10=\n","rules":"Ug=="})");
    EXPECT_EQ(world.told, Tellings({{false, "Unrecognised backup format"}}));
    EXPECT_EQ(world.changedKeys(), Keys{std::string(kRules)});
}

TEST(Restore, AMemberThatIsNoBase64IsPassedOver) {
    RestoreWorld world;
    world.restore(R"({"tunnels":"W10=","proxies":"W10","rules":"=W10"})");
    world.dispatch.advance(std::chrono::seconds(1));
    EXPECT_EQ(world.told, Tellings({{true, "Restore successful"}}));
    EXPECT_EQ(world.changedKeys(), Keys{std::string(kTunnels)});
}

TEST(Restore, TunnelsOfAFutureVersionAreStoredUnopened) {
    RestoreWorld world;
    world.restore("{" + member("tunnels", "tunnels of a future version") + "}");
    world.dispatch.advance(std::chrono::seconds(1));
    EXPECT_EQ(world.told, Tellings({{true, "Restore successful"}}));
    EXPECT_EQ(world.stored(kTunnels), "tunnels of a future version");
}

TEST(Restore, AnEmptyTextIsAnEmptyList) {
    RestoreWorld world;
    world.restore(R"({"tunnels":""})");
    world.dispatch.advance(std::chrono::seconds(1));
    EXPECT_EQ(world.told, Tellings({{true, "Restore successful"}}));
    EXPECT_EQ(world.stored(kTunnels), "");
}

TEST(Restore, ABareListOfTunnelsIsStoredByteForByteAndToldAtOnce) {
    RestoreWorld world;
    const auto bytes = " " + listOf<Tunnel>(2) + "\n\n";
    world.restore(bytes);
    EXPECT_EQ(world.told, Tellings({{true, "Tunnels restored successfully"}}));
    EXPECT_EQ(world.updated, 1);
    EXPECT_EQ(world.stored(kTunnels), bytes);
    EXPECT_EQ(world.changedKeys(), Keys{std::string(kTunnels)});
    world.dispatch.advance(std::chrono::seconds(1));
    EXPECT_EQ(world.told.size(), 1U);
    EXPECT_EQ(world.reloaded, 0);
}

TEST(Restore, AnEmptyListClearsTheTunnels) {
    RestoreWorld world;
    world.restore("[]");
    EXPECT_EQ(world.told, Tellings({{true, "Tunnels restored successfully"}}));
    EXPECT_EQ(world.stored(kTunnels), "[]");
}

TEST(Restore, TouchesNeitherTheMessageNorTheFlag) {
    RestoreWorld world;
    world.restore("[]");
    EXPECT_EQ(world.manager->state().statusMessage, "");
    EXPECT_FALSE(world.manager->state().isWorking);
}

TEST(Restore, AManagerThatGoesMeanwhileTellsNothing) {
    RestoreWorld world;
    world.restore("{" + member("tunnels", "T") + "}");
    world.manager.reset();
    world.dispatch.advance(std::chrono::seconds(1));
    EXPECT_TRUE(world.told.empty());
    EXPECT_EQ(world.stored(kTunnels), "T");
}

} // namespace
} // namespace fernwick::tests
