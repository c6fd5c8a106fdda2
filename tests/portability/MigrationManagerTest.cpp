#include "portability/MigrationManager.h"

#include "MigrationWorld.h"

#include <gtest/gtest.h>

#include <array>

namespace fernwick::tests {

namespace {

using platform::PropertyValue;

constexpr std::array kDataKeys = {"savedTunnelsData_v2", "savedTunnelsData", "savedSSHKeys", "savedTunnelTags"};
constexpr std::array kSettingKeys = {
    "launchAtLogin", "connectOnLaunch",         "showAsOption",   "showStatusInMenuBar", "defaultSSHPort",
    "clashEnabled",  "mihomoPermissionGranted", "syncWithiCloud", "enableAutoBackup",    "backupIntervalHrs",
    "backupPath",    "maxBackupCount",          "lastBackupTS",   "lastSyncTS"};

// A value of any type that a setting may have, of its own for each key.
PropertyValue settingNumber(std::size_t number) {
    switch (number % 4) {
    case 0:
        return {true};
    case 1:
        return {static_cast<std::int64_t>(number)};
    case 2:
        return {"text " + std::to_string(number)};
    default:
        return {1.5 * static_cast<double>(number)};
    }
}

void fillOld(MigrationWorld& world) {
    for (const auto* key : kDataKeys) {
        world.setOldData(key, std::string("[") + key + "]");
    }
    world.setOldData("com.larkmere.proxies", "[proxies]");
    world.setOldData("com.larkmere.rules", "[rules]");
    for (std::size_t number = 0; number < kSettingKeys.size(); ++number) {
        world.old().insert_or_assign(kSettingKeys[number], settingNumber(number));
    }
    world.setOldData("somethingElse", "of no interest");
}

} // namespace

TEST(MigrationManager, NamesThePredecessorAndItsMark) {
    EXPECT_EQ(MigrationManager::oldBundleID, "quenby.Larkmere");
    EXPECT_EQ(MigrationManager::migrationKey, "fernwick.migrationFromLarkmereDone_v2");
}

TEST(MigrationManager, CopiesEverythingInOrderAndSaysSo) {
    MigrationWorld world;
    fillOld(world);
    EXPECT_EQ(world.start(), (Lines{"[Migration] Starting migration from Larkmere (quenby.Larkmere)...",
                                    "[Migration] ✅ Copied: savedTunnelsData_v2",
                                    "[Migration] ✅ Copied: savedTunnelsData",
                                    "[Migration] ✅ Copied: savedSSHKeys",
                                    "[Migration] ✅ Copied: savedTunnelTags",
                                    "[Migration] ✅ Copied: com.larkmere.proxies → com.fernwick.proxies",
                                    "[Migration] ✅ Copied: com.larkmere.rules → com.fernwick.rules",
                                    "[Migration] ✅ Setting: launchAtLogin",
                                    "[Migration] ✅ Setting: connectOnLaunch",
                                    "[Migration] ✅ Setting: showAsOption",
                                    "[Migration] ✅ Setting: showStatusInMenuBar",
                                    "[Migration] ✅ Setting: defaultSSHPort",
                                    "[Migration] ✅ Setting: clashEnabled",
                                    "[Migration] ✅ Setting: mihomoPermissionGranted",
                                    "[Migration] ✅ Setting: syncWithiCloud",
                                    "[Migration] ✅ Setting: enableAutoBackup",
                                    "[Migration] ✅ Setting: backupIntervalHrs",
                                    "[Migration] ✅ Setting: backupPath",
                                    "[Migration] ✅ Setting: maxBackupCount",
                                    "[Migration] ✅ Setting: lastBackupTS",
                                    "[Migration] ✅ Setting: lastSyncTS",
                                    "[Migration] No old Application Support folder found.",
                                    "[Migration] ✅ Migration completed successfully!"}));
}

TEST(MigrationManager, EveryValueIsCopiedAsItIs) {
    MigrationWorld world;
    fillOld(world);
    const auto before = world.old();
    static_cast<void>(world.start());
    for (const auto* key : kDataKeys) {
        EXPECT_EQ(world.mine(key), std::string("[") + key + "]");
    }
    EXPECT_EQ(world.mine("com.fernwick.proxies"), "[proxies]");
    EXPECT_EQ(world.mine("com.fernwick.rules"), "[rules]");
    for (std::size_t number = 0; number < kSettingKeys.size(); ++number) {
        EXPECT_EQ(world.defaults.value(kSettingKeys[number]), settingNumber(number)) << kSettingKeys[number];
    }
    EXPECT_TRUE(world.isDone());
    EXPECT_EQ(world.defaults.keys().size(), kDataKeys.size() + 2 + kSettingKeys.size() + 1);
    EXPECT_EQ(world.old(), before);
}

TEST(MigrationManager, SecondStartSaysAndDoesNothing) {
    MigrationWorld world;
    fillOld(world);
    static_cast<void>(world.start());
    const auto changes = world.defaults.changes();
    const auto synchronizations = world.defaults.synchronizations();
    world.defaults.remove("savedSSHKeys");
    EXPECT_EQ(world.start(), Lines());
    EXPECT_EQ(world.mine("savedSSHKeys"), "(nothing)");
    EXPECT_EQ(world.defaults.changes().size(), changes.size() + 1);
    EXPECT_EQ(world.defaults.synchronizations(), synchronizations);
}

TEST(MigrationManager, CopiesAreOnDiskBeforeTheMark) {
    MigrationWorld world;
    fillOld(world);
    static_cast<void>(world.start());
    EXPECT_EQ(world.defaults.changes().back(), kDoneKey);
    EXPECT_EQ(world.defaults.synchronizations(), 2U);
}

TEST(MigrationManager, DomainThatCannotBeOpenedIsSkippedForEver) {
    MigrationWorld world;
    fillOld(world);
    world.oldFile("file", "text");
    world.disk->unreadable.insert("quenby.Larkmere");
    EXPECT_EQ(world.start(),
              (Lines{std::string(kStarting), "[Migration] Cannot open old defaults domain. Skipping."}));
    EXPECT_EQ(world.defaults.keys(), Lines{std::string(kDoneKey)});
    EXPECT_EQ(world.defaults.synchronizations(), 1U);
    EXPECT_TRUE(world.items.copies.empty());
    world.disk->unreadable.clear();
    EXPECT_EQ(world.start(), Lines());
}

TEST(MigrationManager, NoPredecessorAtAllIsNoMeaningfulData) {
    MigrationWorld world;
    const Lines skipped{std::string(kStarting), "[Migration] Old domain has no meaningful data. Skipping."};
    EXPECT_EQ(world.start(), skipped);
    EXPECT_TRUE(world.isDone());
    EXPECT_EQ(world.defaults.synchronizations(), 1U);
    EXPECT_FALSE(world.disk->domains.contains("quenby.Larkmere"));
    fillOld(world); // a predecessor that is installed later is not picked up
    EXPECT_EQ(world.start(), Lines());
    EXPECT_EQ(world.defaults.keys(), Lines{std::string(kDoneKey)});
}

TEST(MigrationManager, SettingsAndProxiesWithoutTunnelsAndKeysAreSkipped) {
    MigrationWorld world;
    fillOld(world);
    world.oldFile("file", "text");
    world.old().erase("savedTunnelsData_v2");
    world.old().insert_or_assign("savedSSHKeys", PropertyValue{std::string("no data")});
    EXPECT_EQ(world.start(),
              (Lines{std::string(kStarting), "[Migration] Old domain has no meaningful data. Skipping."}));
    EXPECT_EQ(world.defaults.keys(), Lines{std::string(kDoneKey)});
    EXPECT_FALSE(world.files.folders.contains("/data/Fernwick"));
}

TEST(MigrationManager, EitherTunnelsOrKeysAreEnough) {
    for (const auto* key : {"savedTunnelsData_v2", "savedSSHKeys"}) {
        MigrationWorld world;
        world.setOldData(key, "");
        world.old().insert_or_assign("clashEnabled", PropertyValue{true});
        EXPECT_EQ(world.startWithoutFolder(), (Lines{std::string("[Migration] ✅ Copied: ") + key,
                                                     "[Migration] ✅ Setting: clashEnabled"}));
        EXPECT_EQ(world.mine(key), "");
    }
}

TEST(MigrationManager, EmptyListGivesWayToAFullOne) {
    for (const auto* empty : {"[]", "x", ""}) {
        MigrationWorld world;
        fillOld(world);
        for (const auto* key : kDataKeys) {
            world.defaults.setData(key, empty);
        }
        static_cast<void>(world.start());
        for (const auto* key : kDataKeys) {
            EXPECT_EQ(world.mine(key), std::string("[") + key + "]") << empty;
        }
    }
}

TEST(MigrationManager, DataOfThreeBytesIsKept) {
    MigrationWorld world;
    fillOld(world);
    for (const auto* key : kDataKeys) {
        world.defaults.setData(key, "[ ]");
    }
    const auto lines = world.start();
    EXPECT_EQ(lines.at(1), "[Migration] ✅ Copied: com.larkmere.proxies → com.fernwick.proxies");
    for (const auto* key : kDataKeys) {
        EXPECT_EQ(world.mine(key), "[ ]");
    }
}

TEST(MigrationManager, ListOfOneTunnelStaysAndIsNotMerged) {
    MigrationWorld world;
    fillOld(world);
    world.defaults.setData("savedTunnelsData_v2", R"([{"name":"Mine"}])");
    EXPECT_EQ(world.start().at(1), "[Migration] ✅ Copied: savedTunnelsData");
    EXPECT_EQ(world.mine("savedTunnelsData_v2"), R"([{"name":"Mine"}])");
}

TEST(MigrationManager, ValueOfAnotherTypeIsKept) {
    MigrationWorld world;
    fillOld(world);
    const std::array<PropertyValue, 4> others{
        {{std::string()}, {false}, {std::int64_t{0}}, {platform::PropertyArray()}}};
    for (std::size_t number = 0; number < kDataKeys.size(); ++number) {
        world.defaults.set(kDataKeys[number], others[number]);
    }
    static_cast<void>(world.start());
    for (std::size_t number = 0; number < kDataKeys.size(); ++number) {
        EXPECT_EQ(world.defaults.value(kDataKeys[number]), others[number]);
    }
}

TEST(MigrationManager, OldValueOfAnotherTypeIsCopiedAllTheSame) {
    MigrationWorld world;
    world.setOldData("savedSSHKeys", "[keys]");
    world.old().insert_or_assign("savedTunnelTags", PropertyValue{std::string("tags")});
    EXPECT_EQ(world.startWithoutFolder(),
              (Lines{"[Migration] ✅ Copied: savedSSHKeys", "[Migration] ✅ Copied: savedTunnelTags"}));
    EXPECT_EQ(world.defaults.value("savedTunnelTags"), PropertyValue{std::string("tags")});
}

TEST(MigrationManager, RenamedKeysAndSettingsThatAreHereStay) {
    MigrationWorld world;
    fillOld(world);
    world.defaults.setData("com.fernwick.proxies", "[]"); // short, and yet kept
    world.defaults.setData("com.fernwick.rules", "");
    for (const auto* key : kSettingKeys) {
        world.defaults.set(key, {std::string("mine")});
    }
    EXPECT_EQ(world.startWithoutFolder(),
              (Lines{"[Migration] ✅ Copied: savedTunnelsData_v2", "[Migration] ✅ Copied: savedTunnelsData",
                     "[Migration] ✅ Copied: savedSSHKeys", "[Migration] ✅ Copied: savedTunnelTags"}));
    EXPECT_EQ(world.mine("com.fernwick.proxies"), "[]");
    EXPECT_EQ(world.mine("com.fernwick.rules"), "");
    for (const auto* key : kSettingKeys) {
        EXPECT_EQ(world.defaults.value(key), PropertyValue{std::string("mine")}) << key;
    }
}

TEST(MigrationManager, ClashEnabledThatIsSetHereKeepsItsValue) {
    MigrationWorld world;
    world.setOldData("savedSSHKeys", "[keys]");
    world.old().insert_or_assign("clashEnabled", PropertyValue{true});
    world.defaults.set("clashEnabled", {false});
    EXPECT_EQ(world.startWithoutFolder(), Lines{"[Migration] ✅ Copied: savedSSHKeys"});
    EXPECT_EQ(world.defaults.value("clashEnabled"), PropertyValue{false});
}

TEST(MigrationManager, MarkThatIsNotTrueIsNoMark) {
    for (const auto& mark : {PropertyValue{false}, PropertyValue{std::string("no")}}) {
        MigrationWorld world;
        world.defaults.set(kDoneKey, mark);
        EXPECT_EQ(world.start().size(), 2U);
        EXPECT_TRUE(world.isDone());
    }
}

// Whatever was copied before the end came, the next start ends where an undisturbed one does.
TEST(MigrationManager, BeginsAgainAfterACrashAnywhere) {
    MigrationWorld undisturbed;
    fillOld(undisturbed);
    static_cast<void>(undisturbed.start());
    const auto order = undisturbed.defaults.changes();
    const auto wanted = undisturbed.disk->domains.at("com.fernwick.Fernwick");
    for (std::size_t reached = 0; reached < order.size(); ++reached) {
        MigrationWorld world;
        fillOld(world);
        for (std::size_t number = 0; number < reached; ++number) {
            world.defaults.set(order[number], *undisturbed.defaults.value(order[number]));
        }
        const auto lines = world.start();
        EXPECT_EQ(world.disk->domains.at("com.fernwick.Fernwick"), wanted) << reached;
        EXPECT_EQ(lines.size(), 3 + order.size() - 1 - reached);
    }
}

TEST(MigrationManager, FullDiskIsTriedAgainAtTheNextStart) {
    MigrationWorld world;
    fillOld(world);
    world.disk->failing = true;
    EXPECT_EQ(world.start().back(), kCompleted);
    EXPECT_EQ(world.mine("savedSSHKeys"), "[savedSSHKeys]"); // in memory
    EXPECT_FALSE(world.disk->domains.contains("com.fernwick.Fernwick"));
    world.disk->failing = false;
    MigrationWorld next(world.disk);
    EXPECT_EQ(next.start().at(1), "[Migration] ✅ Copied: savedTunnelsData_v2");
    EXPECT_TRUE(next.isDone());
}

} // namespace fernwick::tests
