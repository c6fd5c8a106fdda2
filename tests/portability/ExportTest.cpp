#include "SyncWorld.h"

#include <gtest/gtest.h>

namespace fernwick::tests {
namespace {

constexpr const char* kPath = "/home/someone/out.backup";

// Opens the panel, and answers it.
void exportTo(SyncWorld& world, const std::optional<std::string>& path) {
    world.open().exportAll(world.completion());
    world.dialogs.answer(path);
}

TEST(Export, WithoutStoredTunnelsThereIsNoPanel) {
    SyncWorld world;
    world.defaults.setData(kRules, "[]");
    world.open().exportAll(world.completion());
    EXPECT_EQ(world.told, Tellings({{false, "No tunnels to export"}}));
    EXPECT_TRUE(world.dialogs.saveRequests.empty());
}

TEST(Export, TunnelsOfAnotherTypeAreNone) {
    SyncWorld world;
    world.defaults.set(kTunnels, {std::string("[]")});
    world.open().exportAll(world.completion());
    EXPECT_EQ(world.told, Tellings({{false, "No tunnels to export"}}));
}

TEST(Export, WhatCannotBeEncodedIsToldBeforeThePanel) {
    SyncWorld world;
    world.encode = [](const CatalogueBlobs&) { return std::nullopt; };
    world.defaults.setData(kTunnels, "[]");
    world.open().exportAll(world.completion());
    EXPECT_EQ(world.told, Tellings({{false, "Failed to encode export"}}));
    EXPECT_TRUE(world.dialogs.saveRequests.empty());
}

TEST(Export, SuggestsANameWithTheTimeInGreenwichColonsAndAll) {
    setenv("TZ", "ICT-7", 1); // NOLINT(concurrency-mt-unsafe): no other thread runs
    tzset();
    SyncWorld world;
    world.clock.setNow({816468075.0});
    world.defaults.setData(kTunnels, "[]");
    world.open().exportAll(world.completion());
    ASSERT_EQ(world.dialogs.saveRequests.size(), 1U);
    EXPECT_EQ(world.dialogs.saveRequests[0].name, "Fernwick_Export_2026-11-15T20:41:15Z.backup");
    EXPECT_EQ(world.dialogs.saveRequests[0].kind.extensions, std::vector<std::string>{"backup"});
    EXPECT_TRUE(world.told.empty());
}

TEST(Export, ADismissedPanelWritesNothing) {
    SyncWorld world;
    world.defaults.setData(kTunnels, "[]");
    exportTo(world, std::nullopt);
    EXPECT_EQ(world.told, Tellings({{false, "Cancelled"}}));
    EXPECT_TRUE(world.files.files.empty());
}

TEST(Export, WritesTheListsThatAreThereForTheOwnerAlone) {
    SyncWorld world;
    world.defaults.setData(kTunnels, "tunnels?");
    world.defaults.setData(kRules, "");
    exportTo(world, kPath);
    ASSERT_TRUE(world.files.files.contains(kPath));
    EXPECT_EQ(world.files.files[kPath].bytes, R"({"tunnels":"dHVubmVscz8=","rules":""})");
    EXPECT_EQ(world.files.files[kPath].mode, 0600U);
}

TEST(Export, CountsWhatItWrote) {
    SyncWorld world;
    world.defaults.setData(kTunnels, listOf<Tunnel>(3));
    world.defaults.setData(kProxies, listOf<ProxyConfig>(1));
    world.defaults.setData(kRules, listOf<AppRule>(2));
    exportTo(world, kPath);
    EXPECT_EQ(world.told, Tellings({{true, "Exported 3 tunnels, 1 proxies, 2 rules"}}));
}

TEST(Export, OneOfEachIsStillPlural) {
    SyncWorld world;
    world.defaults.setData(kTunnels, listOf<Tunnel>(1));
    world.defaults.setData(kProxies, listOf<ProxyConfig>(1));
    world.defaults.setData(kRules, listOf<AppRule>(1));
    exportTo(world, kPath);
    EXPECT_EQ(world.told, Tellings({{true, "Exported 1 tunnels, 1 proxies, 1 rules"}}));
}

TEST(Export, TunnelsThatDoNotDecodeAreWrittenAndCountAsNone) {
    SyncWorld world;
    world.defaults.setData(kTunnels, R"([{"from":"the future"}])");
    world.defaults.setData(kProxies, "no list");
    exportTo(world, kPath);
    EXPECT_EQ(world.told, Tellings({{true, "Exported 0 tunnels, 0 proxies, 0 rules"}}));
    EXPECT_EQ(world.files.files[kPath].bytes, R"({"tunnels":")" + base64(R"([{"from":"the future"}])") +
                                                  R"(","proxies":")" + base64("no list") + R"("})");
}

TEST(Export, AFullDiskIsToldInTheSystemsWords) {
    SyncWorld world;
    world.defaults.setData(kTunnels, "[]");
    world.files.writeFailure = platform::FileError{28, "No space left on device"};
    exportTo(world, kPath);
    EXPECT_EQ(world.told, Tellings({{false, "No space left on device"}}));
}

TEST(Export, WritesWhatWasStoredWhenItWasAskedFor) {
    SyncWorld world;
    world.defaults.setData(kTunnels, "before");
    world.open().exportAll(world.completion());
    world.defaults.setData(kTunnels, "after");
    world.dialogs.answer(kPath);
    EXPECT_EQ(world.files.files[kPath].bytes, R"({"tunnels":")" + base64("before") + "\"}");
}

TEST(Export, LeavesTheBackupsTheMessageAndTheFlagAlone) {
    SyncWorld world;
    world.defaults.setData(kTunnels, "[]");
    exportTo(world, std::string(kDefaultFolder) + "/Fernwick_mine.backup");
    EXPECT_EQ(world.told.size(), 1U);
    EXPECT_TRUE(world.manager->state().backupEntries.empty());
    EXPECT_EQ(world.manager->state().lastBackupDate, std::nullopt);
    EXPECT_EQ(world.manager->state().statusMessage, "");
    EXPECT_FALSE(world.manager->state().isWorking);
    EXPECT_EQ(world.defaults.value("lastBackupTS"), std::nullopt);
}

TEST(Export, APanelThatOutlivesTheManagerWritesNothing) {
    SyncWorld world;
    world.defaults.setData(kTunnels, "[]");
    world.open().exportAll(world.completion());
    world.manager.reset();
    world.dialogs.answer(kPath);
    EXPECT_TRUE(world.told.empty());
    EXPECT_TRUE(world.files.files.empty());
}

} // namespace
} // namespace fernwick::tests
