// Tells whether the machine has a way out to the network (NWPathMonitor, rtnetlink(7)).
// Threads: started and destroyed on the main thread; the handler runs on the queue that it was started with.
#pragma once

#include "platform/Dispatch.h"

#include <functional>

namespace fernwick::platform {

enum class NetworkPathStatus { satisfied, unsatisfied, requiresConnection };

class NetworkMonitor {
public:
    // Stops the monitor; the handler is not called again once the queue has run what is on it.
    virtual ~NetworkMonitor() = default;

    // Begins to watch. The handler is called on `queue` with the present status soon after, and then after each
    // change of the path; two calls in a row may bring the same status. Where the system cannot be asked it is
    // never called. Once; the queue outlives the monitor.
    virtual void start(SerialQueue& queue, std::function<void(NetworkPathStatus)> pathUpdateHandler) = 0;
};

} // namespace fernwick::platform
