#include "portability/CloudSync.h"

#include "portability/StoredDate.h"

#include <algorithm>
#include <utility>

namespace fernwick {
namespace {

// How long a pull gives the store to fetch.
constexpr platform::Duration kFetchTime{1000};

void tell(const CloudSync::Completion& completion, bool succeeded) {
    if (completion) {
        completion(succeeded);
    }
}

bool followsAtOnce(const CatalogueList& list) {
    return list.fileKey == listAt(CatalogueIndex::proxies).fileKey ||
           list.fileKey == listAt(CatalogueIndex::rules).fileKey;
}

} // namespace

CloudSync::CloudSync(Services services) : services_(services) {
    services_.state.set(&SyncState::lastSyncDate, readStoredDate(services_.defaults, kLastSyncKey));
}

bool CloudSync::syncWithiCloud() const {
    const auto found = services_.defaults.value(kEnabledKey);
    const auto* enabled = found ? found->as<bool>() : nullptr;
    return enabled != nullptr && *enabled;
}

void CloudSync::setSyncWithiCloud(bool enabled) {
    services_.defaults.set(kEnabledKey, {enabled});
    services_.changed.emit();
    if (enabled) {
        startICloudObserver();
        pushToICloud({});
    } else {
        stopICloudObserver();
        services_.state.set(&SyncState::iCloudStatus, ICloudStatus::available);
    }
}

// An account comes and goes outside of the application, so each operation asks anew; what was found the last
// time says nothing.
void CloudSync::askForAccount(platform::Priority priority, std::function<void(CloudSync&, bool)> answer) {
    services_.dispatch.global(priority, [&store = services_.store, &dispatch = services_.dispatch,
                                         weak = self_.weak(), answer = std::move(answer)]() mutable {
        const bool signedIn = store.isSignedIn();
        dispatch.main([weak, signedIn, answer = std::move(answer)] {
            if (auto* sync = weak.get()) {
                answer(*sync, signedIn);
            }
        });
    });
}

void CloudSync::refreshICloudStatus() {
    services_.state.set(&SyncState::iCloudStatus, ICloudStatus::checking);
    askForAccount(platform::Priority::normal, [](CloudSync& sync, bool signedIn) {
        sync.services_.state.set(&SyncState::iCloudStatus,
                                 signedIn ? ICloudStatus::available : ICloudStatus::unavailable);
    });
}

void CloudSync::startICloudObserver() {
    services_.store.requestSynchronize();
    if (iCloudObserver_) {
        lostObservers_.push_back(*std::move(iCloudObserver_)); // goes on; by design nobody ends it
    }
    iCloudObserver_ =
        services_.store.changedExternally([weak = self_.weak()](const platform::CloudChange& change) {
            auto* const sync = weak.get();
            if (sync != nullptr && sync->pushesAsking_ > 0) {
                sync->heldChanges_.push_back(change);
            } else if (sync != nullptr) {
                sync->handleICloudChange(change);
            }
        });
}

void CloudSync::stopICloudObserver() {
    iCloudObserver_.reset();
}

// Until the lists are in the store, changes from elsewhere wait: otherwise the store would end up with the
// lists of this machine, and this machine with those of the store.
void CloudSync::pushToICloud(Completion completion) {
    if (!syncWithiCloud()) {
        tell(completion, false);
        return;
    }
    ++pushesAsking_;
    askForAccount(platform::Priority::userInitiated, [completion = std::move(completion)](CloudSync& sync,
                                                                                          bool signedIn) {
        --sync.pushesAsking_;
        if (signedIn) {
            sync.push(completion);
        } else if (sync.syncWithiCloud()) { // otherwise it was switched off, which has its own status
            sync.services_.state.set(&SyncState::iCloudStatus, ICloudStatus::unavailable);
        }
        sync.takeHeldChanges();
        if (!signedIn) {
            tell(completion, false);
        }
    });
}

void CloudSync::push(const Completion& completion) {
    services_.state.set(&SyncState::iCloudStatus, ICloudStatus::syncing);
    services_.state.set(&SyncState::isWorking, true);
    const auto blobs = readCatalogue(services_.defaults);
    for (std::size_t list = 0; list < kCatalogueLists.size(); ++list) {
        if (blobs[list]) {
            services_.store.set(kCatalogueLists[list].storeKey, *blobs[list]);
        }
    }
    services_.dispatch.global(
        platform::Priority::userInitiated,
        [&store = services_.store, &dispatch = services_.dispatch, weak = self_.weak(), completion] {
            const bool succeeded = store.synchronize();
            dispatch.main([weak, succeeded, completion] {
                if (auto* sync = weak.get()) {
                    sync->pushed(succeeded, completion);
                }
            });
        });
}

void CloudSync::pushed(bool succeeded, const Completion& completion) {
    services_.state.set(&SyncState::isWorking, false);
    stampSync();
    services_.state.set(&SyncState::iCloudStatus, succeeded ? ICloudStatus(ICloudStatus::synced)
                                                            : ICloudStatus(ICloudStatus::error, "Sync failed"));
    services_.state.set(&SyncState::statusMessage, succeeded ? "Synced to iCloud ✓" : "iCloud sync failed");
    tell(completion, succeeded);
}

void CloudSync::pullFromICloud(Completion completion) {
    if (!syncWithiCloud()) {
        tell(completion, false);
        return;
    }
    askForAccount(platform::Priority::userInitiated,
                  [completion = std::move(completion)](CloudSync& sync, bool signedIn) {
                      if (signedIn) {
                          sync.pull(completion);
                      } else {
                          tell(completion, false);
                      }
                  });
}

void CloudSync::pull(const Completion& completion) {
    services_.state.set(&SyncState::iCloudStatus, ICloudStatus::syncing);
    services_.state.set(&SyncState::isWorking, true);
    services_.store.requestSynchronize();
    services_.dispatch.mainAfter(kFetchTime, [weak = self_.weak(), completion] {
        if (auto* sync = weak.get()) {
            sync->fetched(completion);
        }
    });
}

void CloudSync::fetched(const Completion& completion) {
    CatalogueBlobs blobs;
    for (std::size_t list = 0; list < kCatalogueLists.size(); ++list) {
        blobs[list] = services_.store.data(kCatalogueLists[list].storeKey);
    }
    storeCatalogue(services_.defaults, blobs);
    const bool pulled = blobs[CatalogueIndex::tunnels] || blobs[CatalogueIndex::proxies];
    if (pulled) {
        services_.rules.reloadFromDefaults();
    }
    services_.state.set(&SyncState::isWorking, false);
    stampSync();
    services_.state.set(&SyncState::iCloudStatus, ICloudStatus::synced);
    services_.state.set(&SyncState::statusMessage,
                        pulled ? "Pulled from iCloud ✓" : "Nothing to pull from iCloud");
    if (pulled) {
        services_.notifications.post(kCloudDataUpdated);
    }
    tell(completion, pulled);
}

void CloudSync::takeHeldChanges() {
    if (pushesAsking_ == 0) {
        for (const auto& change : std::exchange(heldChanges_, {})) {
            handleICloudChange(change);
        }
    }
}

void CloudSync::handleICloudChange(const platform::CloudChange& change) {
    if (!change) {
        return;
    }
    for (const auto& key : *change) {
        const auto list = std::ranges::find(kCatalogueLists, key, &CatalogueList::storeKey);
        const auto blob = list != kCatalogueLists.end() ? services_.store.data(key) : std::nullopt;
        if (!blob) {
            continue;
        }
        services_.defaults.set(list->defaultsKey, {*blob});
        if (followsAtOnce(*list)) {
            services_.rules.reloadFromDefaults();
        }
    }
    stampSync();
    services_.state.set(&SyncState::iCloudStatus, ICloudStatus::synced);
    services_.state.set(&SyncState::statusMessage, "Received sync from another device");
    services_.notifications.post(kCloudDataUpdated);
}

void CloudSync::stampSync() {
    const auto now = services_.clock.now();
    services_.state.set(&SyncState::lastSyncDate, now);
    storeDate(services_.defaults, kLastSyncKey, now);
}

} // namespace fernwick
