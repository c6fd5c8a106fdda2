// Everything that a MigrationManager needs, on fakes, and what it printed.
#pragma once

#include "portability/MigrationManager.h"
#include "support/FakeFileItems.h"
#include "support/FakeFileSystem.h"
#include "support/FakeUserDefaults.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace fernwick::tests {

using Lines = std::vector<std::string>;

inline constexpr std::string_view kStarting =
    "[Migration] Starting migration from Larkmere (quenby.Larkmere)...";
inline constexpr std::string_view kNoFolder = "[Migration] No old Application Support folder found.";
inline constexpr std::string_view kCompleted = "[Migration] ✅ Migration completed successfully!";
inline constexpr std::string_view kDoneKey = "fernwick.migrationFromLarkmereDone_v2";

struct MigrationWorld {
    explicit MigrationWorld(std::shared_ptr<fakes::FakeDisk> found = std::make_shared<fakes::FakeDisk>())
        : disk(std::move(found)) {}

    // Starts the application: the lines that the migration prints.
    Lines start() {
        Lines lines;
        MigrationManager({.defaults = defaults,
                          .provider = provider,
                          .files = files,
                          .items = items,
                          .supportFolders = supportFolders,
                          .print = [&](std::string_view line) { lines.emplace_back(line); }})
            .migrateIfNeeded();
        return lines;
    }

    // The same; of a migration that runs its course without a support folder, the lines in between.
    Lines startWithoutFolder() {
        auto lines = start();
        EXPECT_GE(lines.size(), 3U);
        EXPECT_EQ(lines.front(), kStarting);
        EXPECT_EQ(lines.back(), kCompleted);
        EXPECT_EQ(lines[lines.size() - 2], kNoFolder);
        return lines.size() < 3 ? Lines() : Lines(lines.begin() + 1, lines.end() - 2);
    }

    // What the predecessor has.
    platform::PropertyDictionary& old() { return disk->domains["quenby.Larkmere"]; }
    void setOldData(const std::string& key, const std::string& bytes) {
        old().insert_or_assign(key, platform::PropertyValue{platform::Data(bytes)});
    }

    // What we have under the key, as text; "(nothing)" when there is nothing, "(other)" for another type.
    [[nodiscard]] std::string mine(std::string_view key) const {
        const auto bytes = defaults.data(key);
        return bytes ? bytes->bytes() : defaults.value(key) ? "(other)" : "(nothing)";
    }

    [[nodiscard]] bool isDone() const { return defaults.value(kDoneKey) == platform::PropertyValue{true}; }

    void oldFile(const std::string& name, const std::string& bytes) {
        files.folders.insert("/data/Larkmere");
        files.files.insert_or_assign("/data/Larkmere/" + name, fakes::FakeFileSystem::File{bytes, 0600});
    }

    std::shared_ptr<fakes::FakeDisk> disk;
    fakes::FakeUserDefaults defaults{disk, "com.fernwick.Fernwick"};
    fakes::FakeUserDefaultsProvider provider{disk};
    fakes::FakeFileSystem files;
    fakes::FakeFileItems items{files};
    std::vector<std::string> supportFolders{"/data", "/another"};
};

} // namespace fernwick::tests
