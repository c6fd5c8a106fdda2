// Puts imported tunnels into the stored catalogue.
// Threads: main thread only.
#pragma once

#include "catalogue/Tunnel.h"
#include "catalogue/TunnelStore.h"
#include "platform/Dispatch.h"
#include "platform/UserDefaults.h"
#include "support/NotificationCenter.h"
#include "support/Weak.h"

#include <cstddef>
#include <string>
#include <vector>

namespace fernwick {

// What to tell after a successful import, e.g. "Imported 2 tunnels from Fernwick SSH.". `count` is that of the
// tunnels in the file, those that are stored already included.
[[nodiscard]] std::string importedText(std::size_t count);

class ImportMerge {
public:
    // All of them outlive it. Keep it as long as the store: the store's reload is queued and goes with it, and
    // a store that has not reloaded writes its old list back with its next change.
    ImportMerge(platform::UserDefaults& defaults, platform::Dispatch& dispatch, TunnelStore& store,
                support::NotificationCenter& notifications)
        : defaults_(defaults), dispatch_(dispatch), store_(store), notifications_(notifications) {}
    ImportMerge(const ImportMerge&) = delete;
    ImportMerge& operator=(const ImportMerge&) = delete;

    // Appends the tunnels whose id no stored tunnel has, in their order; what is stored stays as it is, and a
    // stored list that cannot be read counts as empty. The list is on disk when this returns. Then, from the
    // main queue, the store reloads and `TunnelStore::kDidChangeNotification` is posted. A list that cannot be
    // encoded is not stored, and nothing follows.
    void merge(const std::vector<Tunnel>& delivered);

private:
    platform::UserDefaults& defaults_;
    platform::Dispatch& dispatch_;
    TunnelStore& store_;
    support::NotificationCenter& notifications_;
    support::WeakSource<ImportMerge> self_{*this};
};

} // namespace fernwick
