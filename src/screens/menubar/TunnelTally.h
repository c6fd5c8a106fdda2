// How many tunnels of the catalogue are up and how many have failed, and the line that says so. A status costs
// the same however many tunnels there are; the tunnels are gone through only when they come, go or move.
// Threads: main thread only. Bursts are counted and told in one go, on the next turn of the event loop.
#pragma once

#include "catalogue/TunnelStore.h"
#include "platform/Dispatch.h"
#include "screens/Coalescer.h"
#include "tunnel/TunnelManager.h"

#include <cstddef>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace fernwick {

class TunnelTally {
public:
    // All references outlive the tally.
    TunnelTally(TunnelStore& store, TunnelManager& tunnels, platform::Dispatch& dispatch);
    TunnelTally(const TunnelTally&) = delete;
    TunnelTally& operator=(const TunnelTally&) = delete;

    // The tunnels that are connecting or connected.
    [[nodiscard]] std::size_t activeTunnelCount() const { return counts_.active; }

    // Whether at least one tunnel is in error.
    [[nodiscard]] bool hasError() const { return counts_.failed > 0; }

    // All tunnels of the catalogue.
    [[nodiscard]] std::size_t total() const { return counts_.total; }

    // "No active tunnels", "All tunnels connected" or, as an example, "2/5 connected".
    [[nodiscard]] std::string summaryText() const;

    // Counts now what has changed and was not counted yet.
    void flush() { countSoon_.flush(); }

    // Emitted after one of the numbers changed.
    support::Signal<> changed;

private:
    struct Counts {
        std::size_t total = 0;
        std::size_t active = 0;
        std::size_t failed = 0;

        bool operator==(const Counts&) const = default;
    };

    // What was counted for the tunnels of one id; there can be several.
    struct Counted {
        std::size_t tunnels = 0;
        TunnelStatus::Kind kind = TunnelStatus::Kind::idle;
    };

    void count();
    void countAll();
    void countStatus(const support::Uuid& id);
    [[nodiscard]] TunnelStatus::Kind kindOf(const support::Uuid& id) const;

    TunnelStore& store_;
    const TunnelManager& tunnels_;
    std::vector<support::Uuid> ids_; // as they were counted, in order
    std::unordered_map<support::Uuid, Counted> counted_;
    std::unordered_set<support::Uuid> touched_; // whose status changed since
    Counts counts_;
    bool storeTouched_ = true;
    Coalescer countSoon_;
    std::vector<support::Subscription> subscriptions_;
};

} // namespace fernwick
