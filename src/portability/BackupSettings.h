// What the person set about automatic backups. A value of another type in the preference file counts as
// missing. Threads: main thread only.
#pragma once

#include "platform/UserDefaults.h"
#include "support/Signal.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace fernwick {

class BackupSettings {
public:
    // The defaults keys.
    static constexpr std::string_view kEnabledKey = "enableAutoBackup";
    static constexpr std::string_view kIntervalKey = "backupIntervalHrs";
    static constexpr std::string_view kPathKey = "backupPath";
    static constexpr std::string_view kCountKey = "maxBackupCount";

    // What stands where nothing is stored.
    static constexpr std::int64_t kInterval = 24;
    static constexpr std::int64_t kCount = 10;

    // `changed` is emitted after each change. Both outlive the settings.
    BackupSettings(platform::UserDefaults& defaults, support::Signal<>& changed);
    BackupSettings(const BackupSettings&) = delete;
    BackupSettings& operator=(const BackupSettings&) = delete;

    // Whether the timer is to run. Whoever changes it, or the interval, calls
    // SyncManager::configureAutoBackupTimer afterwards.
    [[nodiscard]] bool enableAutoBackup() const;
    void setEnableAutoBackup(bool enabled);

    // Between two backups, in hours.
    [[nodiscard]] std::int64_t backupIntervalHrs() const;
    void setBackupIntervalHrs(std::int64_t hours);

    // The folder's absolute path; empty means the default folder.
    [[nodiscard]] std::string backupPath() const;
    void setBackupPath(std::string path);

    // How many files are kept, not less than 0. Also an end to the files that are already too many, but only
    // with the next backup.
    [[nodiscard]] std::int64_t maxBackupCount() const;
    void setMaxBackupCount(std::int64_t count);

private:
    void set(std::string_view key, platform::PropertyValue value);

    platform::UserDefaults& defaults_;
    support::Signal<>& changed_;
};

} // namespace fernwick
