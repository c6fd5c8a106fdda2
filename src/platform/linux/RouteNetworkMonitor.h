// The network monitor on rtnetlink(7). Satisfied while some default route, IPv4 or IPv6, leads off the machine
// by an interface that works; loopback and the application's own tun device do not count (NetworkPath.h). A
// connection that a person would have to make first (`requiresConnection`) is nothing that the kernel knows of,
// so it is never told.
// Threads: made, started and destroyed on one thread. A thread of its own sleeps until the kernel tells of a
// change.
#pragma once

#include "platform/NetworkMonitor.h"
#include "platform/posix/FileDescriptor.h"

#include <chrono>
#include <thread>

namespace fernwick::platform {

class RouteNetworkMonitor final : public NetworkMonitor {
public:
    // A change is looked at once it is this old, so that what comes with it is seen as one.
    static constexpr std::chrono::milliseconds kSettle{50};

    RouteNetworkMonitor();
    RouteNetworkMonitor(const RouteNetworkMonitor&) = delete;
    RouteNetworkMonitor& operator=(const RouteNetworkMonitor&) = delete;
    // Waits for the thread, which stops at once.
    ~RouteNetworkMonitor() override;

    // Watches the network namespace of the calling thread.
    void start(SerialQueue& queue, std::function<void(NetworkPathStatus)> pathUpdateHandler) override;

private:
    FileDescriptor stop_;
    std::thread thread_;
};

} // namespace fernwick::platform
