// What the keeping alive of tunnels asks of the one who runs them.
#pragma once

#include "catalogue/TunnelStatus.h"
#include "catalogue/TunnelStore.h"

#include <optional>
#include <vector>

namespace fernwick {

// Threads: main thread.
class TunnelRunner {
public:
    virtual ~TunnelRunner() = default;

    // The tunnel's status, or nothing for one that was never touched.
    [[nodiscard]] virtual std::optional<TunnelStatus> status(const support::Uuid& id) const = 0;

    // Queues the assignment of a status.
    virtual void updateStatus(TunnelStatus status, const support::Uuid& id) = 0;

    // Forgets whatever process stands under the tunnel's id, and launches a new one.
    virtual void relaunch(const Tunnel& tunnel, TunnelStore& store) = 0;

    // Asks every child to end and kills it at once; their exits arrive as any other. Returns the ids of all
    // tunnels that have a process, one that is still being prepared included: that one is not launched any more
    // if `cancelPrepared` is set.
    virtual std::vector<support::Uuid> endAllForSleep(bool cancelPrepared) = 0;
};

} // namespace fernwick
