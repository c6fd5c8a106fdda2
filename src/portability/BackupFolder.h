// The folder of the backups on disk.
// Threads: main thread only.
#pragma once

#include "platform/Clock.h"
#include "platform/FileSystem.h"
#include "platform/HostEnvironment.h"
#include "portability/BackupEntry.h"

#include <expected>
#include <string>
#include <string_view>
#include <vector>

namespace fernwick {

class BackupFolder {
public:
    // All of them outlive the folder.
    BackupFolder(platform::FileSystem& files, const platform::Clock& clock,
                 const platform::HostEnvironment& host);

    // The folder of that name; below the person's home if the name is empty.
    [[nodiscard]] std::string pathOf(const std::string& backupPath) const;

    // The name of a backup that is made at that moment, in the machine's time zone, as in
    // "Fernwick_2026-11-15_20-41-15.backup". Two within a second have the same one.
    [[nodiscard]] static std::string nameAt(support::Date date);

    // What in the folder has a name that begins as a backup's does, whatever follows, newest first. Files of
    // the same date stay in the file system's order. Nothing when the folder cannot be read.
    [[nodiscard]] std::vector<BackupEntry> entries(const std::string& folder) const;

    // Makes the folder and those above it.
    [[nodiscard]] std::expected<void, platform::FileError> make(const std::string& folder) const;

    // Writes the file, or replaces it, for its owner alone.
    [[nodiscard]] std::expected<void, platform::FileError> write(const std::string& path,
                                                                 std::string_view bytes) const;

    // Removes the file. One that cannot be removed stays, and nobody is told.
    void remove(const std::string& path) const;

private:
    platform::FileSystem& files_;
    const platform::Clock& clock_;
    const platform::HostEnvironment& host_;
};

} // namespace fernwick
