// How the catalogue leaves this machine and comes to it: exports, restores, automatic backups, and the copy in
// the cloud. It is made when the page that shows it is first opened, and lives until the end.
//
// All of them carry the five lists of CatalogueFile.h, whole and unopened; secrets stay in the keyring. A list
// that comes replaces the stored one. Proxies and rules in memory follow at once; tunnels, keys and tags keep
// what they loaded at the start, and a later change of theirs writes their old list back.
// Threads: main thread only. A completion is called exactly once, on the main thread, at once or later; not if
// the manager, or the window below a panel, is gone before.
#pragma once

#include "platform/Clock.h"
#include "platform/CloudStore.h"
#include "platform/Dialogs.h"
#include "platform/Dispatch.h"
#include "platform/FileSystem.h"
#include "platform/HostEnvironment.h"
#include "platform/UserDefaults.h"
#include "portability/AutomaticBackups.h"
#include "portability/BackupSettings.h"
#include "portability/CatalogueFile.h"
#include "portability/CloudSync.h"
#include "portability/SyncState.h"
#include "routing/ProxyRuleStore.h"
#include "support/NotificationCenter.h"
#include "support/Signal.h"
#include "support/Weak.h"

#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace fernwick {

// What the manager needs of the rest of the application; all of it outlives the manager.
struct SyncServices {
    platform::UserDefaults& defaults;
    platform::Dispatch& dispatch;
    const platform::Clock& clock;
    platform::FileSystem& files;
    platform::Dialogs& dialogs;
    platform::CloudStore& cloud;
    support::NotificationCenter& notifications;
    const platform::HostEnvironment& host;
    ProxyRuleStore& rules;
    CatalogueEncoder encode = &encodeCatalogue;
};

class SyncManager {
public:
    // The defaults keys of the two lists that follow at once.
    static constexpr std::string_view proxiesUDKey = listAt(CatalogueIndex::proxies).defaultsKey;
    static constexpr std::string_view rulesUDKey = listAt(CatalogueIndex::rules).defaultsKey;

    // Reads the dates, asks for the cloud's status, lists the backups, starts the timer if backups are on, and
    // then listens to the cloud if that is on. Neither pushes nor pulls.
    explicit SyncManager(SyncServices services);
    SyncManager(const SyncManager&) = delete;
    SyncManager& operator=(const SyncManager&) = delete;

    // What is shown. A reference that stays good; its parts change.
    [[nodiscard]] const SyncState& state() const { return state_.now(); }

    // Whether and where backups are made; setting them does nothing else.
    [[nodiscard]] BackupSettings& settings() { return settings_; }
    [[nodiscard]] const BackupSettings& settings() const { return settings_; }

    // Asks where to, and writes a file there that only its owner can read. The text is what to show, e.g.
    // "Exported 2 tunnels, 0 proxies, 1 rules", "Cancelled", or the system's own text about the file.
    void exportAll(SyncCompletion completion);

    // Reads such a file, or a bare JSON array of tunnels, from an absolute path, and stores what is in it.
    // Lists that the file does not hold stay. Success is told 0.1 seconds later, when proxies and rules have
    // followed.
    void restoreBackup(const std::string& url, SyncCompletion completion);

    // Writes a backup into the folder now and removes those that are too many. True with the file's name, or
    // false with what to show; both are told at once. Traps when fewer than no backups are to be kept.
    bool runBackup(const SyncCompletion& completion = {}) { return backups_.runBackup(completion); }

    // Lists the folder anew; a folder that cannot be read has no entries.
    void refreshBackupEntries() { backups_.refreshBackupEntries(); }

    // Removes the file, if it can be, and lists the folder anew.
    void deleteBackup(const BackupEntry& entry) { backups_.deleteBackup(entry); }

    // The folder that backups go to now, an absolute path.
    [[nodiscard]] std::string backupFolder() const { return backups_.backupFolder(); }

    // Starts or ends the timer as the settings have it.
    void configureAutoBackupTimer() { backups_.configureAutoBackupTimer(); }

    // Starts the timer anew, and backs up at once if the last backup is longer ago than the interval. Traps
    // when the interval is longer than 64 bits of seconds hold.
    void startAutoBackupTimer() { backups_.startAutoBackupTimer(); }

    // Whether the catalogue is shared by the cloud. To switch it on sends this machine's lists, over whatever
    // is there; to switch it on once more listens once more, for good.
    [[nodiscard]] bool syncWithiCloud() const { return cloud_.syncWithiCloud(); }
    void setSyncWithiCloud(bool enabled) { cloud_.setSyncWithiCloud(enabled); }

    // Asks whether there is an account; the status is `checking` until the answer comes.
    void refreshICloudStatus() { cloud_.refreshICloudStatus(); }

    // Begins and ends to take over what other machines change.
    void startICloudObserver() { cloud_.startICloudObserver(); }
    void stopICloudObserver() { cloud_.stopICloudObserver(); }

    // Sends the stored lists. False when it is switched off, without an account, or when it could not be sent.
    void pushToICloud(CloudSync::Completion completion = {}) { cloud_.pushToICloud(std::move(completion)); }

    // Takes over what the cloud has, one second later. False when it is switched off, without an account, or
    // when it had neither tunnels nor proxies.
    void pullFromICloud(CloudSync::Completion completion = {}) { cloud_.pullFromICloud(std::move(completion)); }

    // Takes over the lists that another machine changed. Without a list of them nothing happens.
    void handleICloudChange(const platform::CloudChange& change) { cloud_.handleICloudChange(change); }

    // Emitted after each change of the state or of a setting.
    support::Signal<> changed;

private:
    void writeExport(const std::optional<std::string>& path, const std::string& bytes,
                     const CatalogueBlobs& blobs, const SyncCompletion& completion);
    void restored(std::string_view message, const SyncCompletion& completion);

    SyncServices services_;
    PublishedSyncState state_{changed};
    BackupSettings settings_;
    AutomaticBackups backups_;
    CloudSync cloud_;
    support::WeakSource<SyncManager> self_{*this};
};

} // namespace fernwick
