// Keeps tunnels alive across three kinds of trouble: a child that dies, a machine that sleeps, and a network
// that goes away. The loss of the network stops nothing by itself: ssh finds a dead link by its own keep-alive.
// Threads: main thread only, except where the network's status is noted.
#pragma once

#include "platform/NetworkMonitor.h"
#include "platform/PowerEvents.h"
#include "tunnel/PortHygiene.h"
#include "tunnel/RoutingLayer.h"
#include "tunnel/TunnelRunner.h"

#include <atomic>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

namespace fernwick {

class Reconnector {
public:
    static constexpr int kMaxReconnectAttempts = 5;
    static constexpr platform::Duration kReconnectDelay{5000};

    // What the retry rule decided.
    enum class Decision { retry, giveUp };

    struct Services {
        platform::Dispatch& dispatch;
        RoutingLayer& routing;
        platform::PowerEvents& power;
    };

    // The references outlive this object, and the monitor is its own.
    Reconnector(Services services, std::unique_ptr<platform::NetworkMonitor> monitor, TunnelRunner& runner,
                PortHygiene& ports, TunnelLogs& logs);
    Reconnector(const Reconnector&) = delete;
    Reconnector& operator=(const Reconnector&) = delete;

    // Begins to watch the network's path; once.
    void startNetworkMonitor();

    // Begins to listen for sleep and wake; once.
    void observePower();

    // The retry rule, for a child that ended with a status other than 0 and a tunnel that wants to come back:
    // tells status and log, and plans the next launch of this very value unless all attempts are used or the
    // machine sleeps.
    [[nodiscard]] Decision retryAfterExit(int exitStatus, const Tunnel& tunnel, TunnelStore& store);

    // The tunnel is up: its count starts anew and it waits for nothing.
    void confirmed(const support::Uuid& id);

    // The user stopped the tunnel: nothing brings it back any more.
    void forget(const support::Uuid& id);

    // Writes a line into the log of every tunnel that waits to come back.
    void logToPending(const std::string& message);

private:
    // In the order in which they may go: the monitor before its queue, and this before what its work touches.
    struct Network {
        std::atomic<platform::NetworkPathStatus> lastStatus = platform::NetworkPathStatus::satisfied;
        std::unique_ptr<platform::SerialQueue> queue;
        std::unique_ptr<platform::NetworkMonitor> monitor;
    };

    void reconnectTimerFired(const Tunnel& tunnel, TunnelStore& store);
    void handleSleep();
    void handleWake();
    void handleNetworkRestored();
    void relaunchPending(const support::Uuid& id, TunnelStore& store, const std::string& message);

    Services services_;
    TunnelRunner& runner_;
    PortHygiene& ports_;
    TunnelLogs& logs_;
    std::unordered_map<support::Uuid, std::unique_ptr<platform::Timer>> reconnectTimers_; // spent ones included
    std::unordered_map<support::Uuid, int> reconnectAttempts_;
    std::unordered_map<support::Uuid, TunnelStore*> pendingReconnect_;
    bool isSleeping_ = false;
    Network network_;
    std::vector<support::Subscription> subscriptions_;
    support::WeakSource<Reconnector> self_;
};

} // namespace fernwick
