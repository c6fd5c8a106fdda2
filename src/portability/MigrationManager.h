// What the predecessor, Larkmere, left behind, copied to where this application looks: its preferences and its
// support folder, once, at the very first start. What is here already stays, and nothing of the predecessor's
// is touched, so that a person can go back to it.
// Threads: main thread only, before anything has read the preferences.
#pragma once

#include "platform/FileItems.h"
#include "platform/FileSystem.h"
#include "platform/UserDefaults.h"
#include "support/StandardOutput.h"

#include <expected>
#include <string>
#include <string_view>
#include <vector>

namespace fernwick {

class MigrationManager {
public:
    // The predecessor's domain.
    static constexpr std::string_view oldBundleID = "quenby.Larkmere";

    // In our own preferences: true once the migration has run its course, and never taken back.
    static constexpr std::string_view migrationKey = "fernwick.migrationFromLarkmereDone_v2";

    // What it needs; all of it outlives the object.
    struct Services {
        platform::UserDefaults& defaults; // our own
        platform::UserDefaultsProvider& provider;
        platform::FileSystem& files;
        platform::FileItems& items;
        std::vector<std::string> supportFolders; // where applications keep theirs; the first one counts
        support::PrintLine print = support::printLine;
    };

    explicit MigrationManager(Services services);
    MigrationManager(const MigrationManager&) = delete;
    MigrationManager& operator=(const MigrationManager&) = delete;

    // Copies what there is to copy, and says so on standard output, a line for each; says and does nothing when
    // that was done before. Returns when the copies stand and the preferences are on disk. A failure is a line
    // too; what could not be copied stays behind, and is not tried again. When the process ends before it is
    // done, the next start does it all once more, which leaves what is there already.
    void migrateIfNeeded();

private:
    void copyData(const platform::PropertyDictionary& old);
    void copyRenamed(const platform::PropertyDictionary& old);
    void copySettings(const platform::PropertyDictionary& old);
    void migrateApplicationSupport();
    [[nodiscard]] std::expected<void, platform::FileError> copyItems(const std::string& from,
                                                                     const std::string& to);
    void finish();

    Services services_;
};

} // namespace fernwick
