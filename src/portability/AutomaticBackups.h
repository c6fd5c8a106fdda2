// Backups of the catalogue: a file in a folder each time, on demand and by a timer, and the newest of them
// kept. Threads: main thread only; a backup is one small file.
#pragma once

#include "platform/Clock.h"
#include "platform/Dispatch.h"
#include "platform/UserDefaults.h"
#include "portability/BackupFolder.h"
#include "portability/BackupSettings.h"
#include "portability/CatalogueFile.h"
#include "portability/SyncState.h"
#include "support/Weak.h"

#include <expected>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace fernwick {

// How an operation went, and the text to show.
using SyncCompletion = std::function<void(bool succeeded, const std::string& message)>;

class AutomaticBackups {
public:
    // When the last backup succeeded, in seconds since 1970.
    static constexpr std::string_view kLastBackupKey = "lastBackupTS";

    // What it needs; all of it outlives the backups.
    struct Services {
        platform::UserDefaults& defaults;
        platform::Dispatch& dispatch;
        const platform::Clock& clock;
        const BackupSettings& settings;
        PublishedSyncState& state;
        BackupFolder folder;
        CatalogueEncoder encode;
    };

    // Reads when the last backup was; does nothing else.
    explicit AutomaticBackups(Services services);
    AutomaticBackups(const AutomaticBackups&) = delete;
    AutomaticBackups& operator=(const AutomaticBackups&) = delete;

    // As SyncManager says.
    bool runBackup(const SyncCompletion& completion);
    void refreshBackupEntries();
    void deleteBackup(const BackupEntry& entry);
    void configureAutoBackupTimer();
    void startAutoBackupTimer();
    [[nodiscard]] std::string backupFolder() const;

private:
    [[nodiscard]] std::expected<std::string, std::string> writeBackup();
    void rotateBackups();

    Services services_;
    std::unique_ptr<platform::Timer> autoBackupTimer_; // present while it runs
    support::WeakSource<AutomaticBackups> self_{*this};
};

} // namespace fernwick
