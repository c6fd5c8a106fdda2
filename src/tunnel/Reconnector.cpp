#include "tunnel/Reconnector.h"

#include <fmt/format.h>

#include <utility>

namespace fernwick {

using platform::NetworkPathStatus;

Reconnector::Reconnector(Services services, std::unique_ptr<platform::NetworkMonitor> monitor,
                         TunnelRunner& runner, PortHygiene& ports, TunnelLogs& logs)
    : services_(services), runner_(runner), ports_(ports), logs_(logs), self_(*this) {
    network_.monitor = std::move(monitor);
}

void Reconnector::startNetworkMonitor() {
    network_.queue = services_.dispatch.serialQueue("com.fernwick.network");
    network_.monitor->start(*network_.queue, [this, weak = self_.weak()](NetworkPathStatus status) {
        const auto old = network_.lastStatus.exchange(status);
        if (old == NetworkPathStatus::satisfied || status != NetworkPathStatus::satisfied) {
            return;
        }
        services_.dispatch.main([weak] {
            if (auto* reconnector = weak.get()) {
                reconnector->handleNetworkRestored();
            }
        });
    });
}

void Reconnector::observePower() {
    // Both only hop: the work comes after the notification has returned.
    const auto hop = [this](void (Reconnector::*handler)()) {
        return [&dispatch = services_.dispatch, weak = self_.weak(), handler] {
            dispatch.main([weak, handler] {
                if (auto* reconnector = weak.get()) {
                    (reconnector->*handler)();
                }
            });
        };
    };
    subscriptions_.push_back(services_.power.willSleep.connect(hop(&Reconnector::handleSleep)));
    subscriptions_.push_back(services_.power.didWake.connect(hop(&Reconnector::handleWake)));
}

Reconnector::Decision Reconnector::retryAfterExit(int exitStatus, const Tunnel& tunnel, TunnelStore& store) {
    const auto& id = tunnel.id;
    const int attempt = reconnectAttempts_[id] + 1;
    if (attempt > kMaxReconnectAttempts) {
        runner_.updateStatus(TunnelStatus::error("Mất kết nối — thử lại thủ công"), id);
        logs_.add(LogLevel::error, "✗ Đã thử 5 lần, không kết nối được.", id);
        reconnectAttempts_.erase(id);
        return Decision::giveUp;
    }
    reconnectAttempts_[id] = attempt;
    runner_.updateStatus(TunnelStatus::connecting(), id);
    logs_.add(LogLevel::warning,
              fmt::format("{} — reconnect sau 5s (lần {}/5)...",
                          exitStatus == 255 ? "🔴 Mất kết nối mạng" : "⚠ Process thoát bất thường", attempt),
              id);
    pendingReconnect_.insert_or_assign(id, &store);
    if (isSleeping_) {
        logs_.add(LogLevel::warning, "🌙 Sleep đang diễn ra, sẽ reconnect khi thức dậy.", id);
        return Decision::retry;
    }
    reconnectTimers_.insert_or_assign(
        id, services_.dispatch.oneShotTimer(kReconnectDelay, [weak = self_.weak(), tunnel, &store] {
            if (auto* reconnector = weak.get()) {
                reconnector->reconnectTimerFired(tunnel, store);
            }
        }));
    return Decision::retry;
}

void Reconnector::reconnectTimerFired(const Tunnel& tunnel, TunnelStore& store) {
    if (isSleeping_) {
        return; // it still waits, and comes back at the wake
    }
    const auto& port = tunnel.localPort;
    if (!port.empty() && !ports_.listenersOnPort(port).empty()) {
        logs_.add(LogLevel::info, "🧹 Dọn port :" + port + "...", tunnel.id);
        ports_.killListenersOnPort(port);
    }
    logs_.add(LogLevel::info, "↻ Đang kết nối lại...", tunnel.id);
    runner_.relaunch(tunnel, store);
}

void Reconnector::confirmed(const support::Uuid& id) {
    reconnectAttempts_.erase(id);
    pendingReconnect_.erase(id);
}

void Reconnector::forget(const support::Uuid& id) {
    reconnectTimers_.erase(id);
    reconnectAttempts_.erase(id);
    pendingReconnect_.erase(id);
}

void Reconnector::logToPending(const std::string& message) {
    for (const auto& [id, store] : pendingReconnect_) {
        logs_.add(LogLevel::info, message, id);
    }
}

void Reconnector::handleSleep() {
    isSleeping_ = true;
    logToPending("🌙 Mac is sleeping — pausing reconnect loops...");
    auto* held = services_.routing.tunnelStore();
    // The children are killed on purpose, rather than left to time out during the sleep.
    auto waiting = runner_.endAllForSleep(held != nullptr);
    for (const auto& [id, timer] : reconnectTimers_) {
        waiting.push_back(id);
    }
    reconnectTimers_.clear();
    if (held == nullptr) {
        return;
    }
    for (const auto& id : waiting) {
        pendingReconnect_.insert_or_assign(id, held);
    }
}

void Reconnector::handleWake() {
    isSleeping_ = false;
    logToPending("☀️ Mac woke up. Waiting for network...");
    if (network_.lastStatus != NetworkPathStatus::satisfied || pendingReconnect_.empty()) {
        return;
    }
    logToPending(fmt::format("🌐 Network ready — reconnecting {} tunnel(s)...", pendingReconnect_.size()));
    for (const auto& [id, store] : auto(pendingReconnect_)) {
        relaunchPending(id, *store, "🌐 Woke up — reconnecting...");
    }
}

void Reconnector::handleNetworkRestored() {
    if (pendingReconnect_.empty()) {
        return;
    }
    logToPending(fmt::format("🌐 Mạng khôi phục — reconnect {} tunnel(s)...", pendingReconnect_.size()));
    for (const auto& [id, store] : auto(pendingReconnect_)) {
        const auto status = runner_.status(id);
        const bool waits = status && (status->kind() == TunnelStatus::Kind::connecting ||
                                      status->kind() == TunnelStatus::Kind::error);
        if (waits) {
            relaunchPending(id, *store, "🌐 Mạng trở lại — đang kết nối lại...");
        }
    }
}

// By the store's present definition of the tunnel. One that is gone from the catalogue keeps waiting.
void Reconnector::relaunchPending(const support::Uuid& id, TunnelStore& store, const std::string& message) {
    const auto* found = store.find(id);
    if (found == nullptr) {
        return;
    }
    const auto tunnel = *found;
    logs_.add(LogLevel::info, message, id);
    if (!tunnel.localPort.empty()) {
        ports_.killListenersOnPort(tunnel.localPort);
    }
    reconnectTimers_.erase(id);
    runner_.relaunch(tunnel, store);
}

} // namespace fernwick
