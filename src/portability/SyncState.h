// What a screen shows of exports, backups and the cloud.
// Threads: main thread only.
#pragma once

#include "portability/BackupEntry.h"
#include "portability/ICloudStatus.h"
#include "support/Date.h"
#include "support/Signal.h"

#include <optional>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace fernwick {

struct SyncState {
    std::vector<BackupEntry> backupEntries;      // newest first
    std::optional<support::Date> lastBackupDate; // of the last backup that succeeded
    std::optional<support::Date> lastSyncDate;   // of the last push, pull or change from elsewhere
    std::string statusMessage;                   // what was done last; empty at first
    bool isWorking = false;                      // a push or a pull runs; it is shown and holds up nothing
    ICloudStatus iCloudStatus;
};

// The state of one manager. Each assignment tells the listeners, the one of an equal value included.
class PublishedSyncState {
public:
    // The signal outlives the state.
    explicit PublishedSyncState(support::Signal<>& changed) : changed_(changed) {}
    PublishedSyncState(const PublishedSyncState&) = delete;
    PublishedSyncState& operator=(const PublishedSyncState&) = delete;

    [[nodiscard]] const SyncState& now() const { return state_; }

    template <class T>
    void set(T SyncState::* field, std::type_identity_t<T> value) {
        state_.*field = std::move(value);
        changed_.emit();
    }

private:
    support::Signal<>& changed_;
    SyncState state_;
};

} // namespace fernwick
