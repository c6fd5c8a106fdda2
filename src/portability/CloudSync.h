// The copy of the catalogue that the person's machines share. There is no merge: the last writer of a list
// wins, and what comes replaces the stored list whole. Threads: main thread only; what may wait for the store's
// disk runs in the background.
#pragma once

#include "platform/Clock.h"
#include "platform/CloudStore.h"
#include "platform/Dispatch.h"
#include "platform/UserDefaults.h"
#include "portability/CatalogueFile.h"
#include "portability/SyncState.h"
#include "routing/ProxyRuleStore.h"
#include "support/NotificationCenter.h"
#include "support/Signal.h"
#include "support/Weak.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <string_view>
#include <vector>

namespace fernwick {

// Posted after lists came from a file or from the cloud.
inline constexpr std::string_view kCloudDataUpdated = "iCloudDataUpdated";

class CloudSync {
public:
    using Completion = std::function<void(bool succeeded)>;

    // Whether the catalogue is shared.
    static constexpr std::string_view kEnabledKey = "syncWithiCloud";

    // When the last push, pull or change was, in seconds since 1970.
    static constexpr std::string_view kLastSyncKey = "lastSyncTS";

    // The keys of the lists in the cloud.
    static constexpr std::string_view iCloudTunnelKey = listAt(CatalogueIndex::tunnels).storeKey;
    static constexpr std::string_view iCloudTagKey = listAt(CatalogueIndex::tags).storeKey;
    static constexpr std::string_view iCloudKeyKey = listAt(CatalogueIndex::keys).storeKey;
    static constexpr std::string_view iCloudProxiesKey = listAt(CatalogueIndex::proxies).storeKey;
    static constexpr std::string_view iCloudRulesKey = listAt(CatalogueIndex::rules).storeKey;

    // What it needs; all of it outlives the object, and the store also what it does in the background.
    struct Services {
        platform::UserDefaults& defaults;
        platform::Dispatch& dispatch;
        const platform::Clock& clock;
        platform::CloudStore& store;
        support::NotificationCenter& notifications;
        ProxyRuleStore& rules;
        PublishedSyncState& state;
        support::Signal<>& changed; // emitted when the setting changes
    };

    // Reads when the last exchange was; does nothing else.
    explicit CloudSync(Services services);
    CloudSync(const CloudSync&) = delete;
    CloudSync& operator=(const CloudSync&) = delete;

    // As SyncManager says.
    [[nodiscard]] bool syncWithiCloud() const;
    void setSyncWithiCloud(bool enabled);
    void refreshICloudStatus();
    void startICloudObserver();
    void stopICloudObserver();
    void pushToICloud(Completion completion);
    void pullFromICloud(Completion completion);
    void handleICloudChange(const platform::CloudChange& change);

private:
    void askForAccount(platform::Priority priority, std::function<void(CloudSync&, bool)> answer);
    void push(const Completion& completion);
    void pushed(bool succeeded, const Completion& completion);
    void pull(const Completion& completion);
    void fetched(const Completion& completion);
    void takeHeldChanges();
    void stampSync();

    Services services_;
    std::optional<support::Subscription> iCloudObserver_; // present while it listens
    std::vector<support::Subscription> lostObservers_;    // replaced by a newer one, and never ended
    std::size_t pushesAsking_ = 0;                        // whether there is an account
    std::vector<platform::CloudChange> heldChanges_;      // that came meanwhile
    support::WeakSource<CloudSync> self_{*this};
};

} // namespace fernwick
