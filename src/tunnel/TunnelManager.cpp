#include "tunnel/TunnelManager.h"

#include "platform/AppNotifications.h"
#include "tunnel/StandardErrorLines.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <utility>

namespace fernwick {

namespace {

// How long a child that was asked to end may take before it is killed.
constexpr platform::Duration kKillDelay{1000};

std::string_view exitReason(int status) {
    switch (status) {
    case 255:
        return " — Network error or host unreachable";
    case 1:
        return " — General SSH error";
    case 130:
        return " — Interrupted";
    default:
        return "";
    }
}

} // namespace

TunnelManager::TunnelManager(TunnelServices services)
    : services_(std::move(services)),
      logs_(services_.dispatch, services_.clock),
      ports_({services_.dispatch, services_.clock, services_.commands, services_.processes}, logs_),
      reconnector_({services_.dispatch, services_.routing, services_.power},
                   std::move(services_.networkMonitor), *this, ports_, logs_),
      launcher_(services_.host, services_.defaults, services_.keychain,
                AskpassScripts(services_.dispatch, services_.files, services_.host,
                               [this](const std::string& message) { reconnector_.logToPending(message); }),
                logs_),
      self_(*this) {
    services_.routing.startPacServer();
    reconnector_.startNetworkMonitor();
    willTerminate_ =
        services_.notifications.observe(platform::kApplicationWillTerminate, [this] { killAllOnQuit(); });
    reconnector_.observePower();
}

std::optional<TunnelStatus> TunnelManager::status(const support::Uuid& id) const {
    const auto found = statuses_.find(id);
    return found != statuses_.end() ? std::optional(found->second) : std::nullopt;
}

bool TunnelManager::isActive(const support::Uuid& id) const {
    const auto found = statuses_.find(id);
    return found != statuses_.end() && found->second.isActive();
}

std::shared_ptr<platform::ChildProcess> TunnelManager::activeProcess(const support::Uuid& id) const {
    const auto found = activeProcesses_.find(id);
    return found != activeProcesses_.end() ? found->second : nullptr;
}

void TunnelManager::updateStatus(TunnelStatus status, const support::Uuid& id) {
    services_.dispatch.main([weak = self_.weak(), status = std::move(status), id]() mutable {
        if (auto* manager = weak.get()) {
            manager->statuses_.insert_or_assign(id, std::move(status));
            manager->statusChanged.emit(id);
        }
    });
}

void TunnelManager::connect(const Tunnel& tunnel, TunnelStore& store) {
    if (activeProcesses_.contains(tunnel.id)) {
        return;
    }
    // The placeholder closes the gap in which a second connect could slip in before the launch.
    const auto placeholder = services_.processes.makeChild();
    activeProcesses_.emplace(tunnel.id, placeholder);
    updateStatus(TunnelStatus::connecting(), tunnel.id);
    logs_.add(LogLevel::info,
              fmt::format("Connecting to {}@{}:{}...", tunnel.user, tunnel.host, tunnel.sshPort), tunnel.id);
    if (tunnel.localPort.empty()) {
        launchProcess(tunnel, store);
        return;
    }
    prepared_.insert_or_assign(tunnel.id, placeholder);
    ports_.clearPortsBeforeLaunch(tunnel.localPort, tunnel.id,
                                  [weak = self_.weak(), tunnel, placeholder, &store] {
                                      auto* manager = weak.get();
                                      if (manager != nullptr && manager->takePrepared(tunnel.id, placeholder)) {
                                          manager->launchProcess(tunnel, store);
                                      }
                                  });
}

// Whether this placeholder's launch still stands: a stop, a sleep, the end or another launch in the meantime
// takes it away.
bool TunnelManager::takePrepared(const support::Uuid& id,
                                 const std::shared_ptr<platform::ChildProcess>& placeholder) {
    const auto found = prepared_.find(id);
    if (found == prepared_.end() || found->second != placeholder) {
        return false;
    }
    prepared_.erase(found);
    return true;
}

void TunnelManager::relaunch(const Tunnel& tunnel, TunnelStore& store) {
    activeProcesses_.erase(tunnel.id);
    prepared_.erase(tunnel.id); // its launch would leave this one's child to nobody
    launchProcess(tunnel, store);
}

void TunnelManager::launchProcess(const Tunnel& tunnel, TunnelStore& store) {
    auto process = services_.processes.makeChild();
    const auto launched = process->launch(launcher_.compose(tunnel), childHandlers(tunnel, store));
    if (!launched) {
        launchFailed(launched.error(), tunnel.id, store);
        return;
    }
    logs_.add(LogLevel::info, fmt::format("SSH process started (PID: {})", process->pid()), tunnel.id);
    activeProcesses_.insert_or_assign(tunnel.id, std::move(process));
    services_.dispatch.mainAfter(kConfirmDelay, [weak = self_.weak(), tunnel, &store] {
        if (auto* manager = weak.get()) {
            manager->confirmConnected(tunnel, store);
        }
    });
}

void TunnelManager::launchFailed(const platform::LaunchError& error, const support::Uuid& id,
                                 TunnelStore& store) {
    activeProcesses_.erase(id);
    logs_.add(LogLevel::error, "Failed to launch SSH: " + error.description, id);
    updateStatus(TunnelStatus::error(error.description), id);
    store.announceChange();
}

platform::ProcessHandlers TunnelManager::childHandlers(const Tunnel& tunnel, TunnelStore& store) {
    auto& dispatch = services_.dispatch;
    const auto weak = self_.weak();
    return {.standardError =
                [&dispatch, weak, id = tunnel.id](const std::string& bytes) {
                    auto lines = standardErrorLines(bytes);
                    if (lines.empty()) {
                        return;
                    }
                    dispatch.main([weak, id, lines = std::move(lines)]() mutable {
                        auto* manager = weak.get();
                        for (auto& line : lines) {
                            if (manager != nullptr) {
                                const auto level = standardErrorLevel(line);
                                manager->logs_.append(level, std::move(line), id);
                            }
                        }
                    });
                },
            .exit =
                [&dispatch, weak, tunnel, &store](int status) {
                    dispatch.main([weak, status, tunnel, &store] {
                        if (auto* manager = weak.get()) {
                            manager->handleTermination(status, tunnel, store);
                        }
                    });
                }};
}

void TunnelManager::confirmConnected(Tunnel tunnel, TunnelStore& store) {
    // Only the id is compared, not which process stands under it.
    if (!activeProcesses_.contains(tunnel.id)) {
        return;
    }
    updateStatus(TunnelStatus::connected(), tunnel.id);
    reconnector_.confirmed(tunnel.id);
    logs_.add(LogLevel::success, fmt::format("Tunnel is up localhost:{} -> {}", tunnel.localPort, tunnel.host),
              tunnel.id);
    if (!tunnel.localPort.empty()) {
        tunnelPortMap_.insert_or_assign(tunnel.id, tunnel.localPort);
    }
    refreshSystemProxy(tunnel.id, tunnel.localPort);
    refreshClashRules();
    tunnel.lastConnectedAt = services_.clock.now();
    store.update(tunnel);
}

void TunnelManager::handleTermination(int status, const Tunnel& tunnel, TunnelStore& store) {
    // Whichever process stands there: after a stop and an immediate start it is the new one, and that race is
    // accepted.
    activeProcesses_.erase(tunnel.id);
    const auto current = this->status(tunnel.id);
    if (current && current->kind() == TunnelStatus::Kind::idle) {
        return;
    }
    logs_.add(status == 0 ? LogLevel::info : LogLevel::error,
              fmt::format("Process exited (code: {}){}", status, exitReason(status)), tunnel.id);
    tunnelPortMap_.erase(tunnel.id);
    refreshSystemProxy(std::nullopt, std::nullopt);
    if (!tunnel.reconnectOnFailure || status == 0) {
        updateStatus(TunnelStatus::disconnected(), tunnel.id);
    } else if (reconnector_.retryAfterExit(status, tunnel, store) == Reconnector::Decision::retry) {
        return;
    }
    store.announceChange();
}

void TunnelManager::disconnect(const support::Uuid& id) {
    reconnector_.forget(id);
    updateStatus(TunnelStatus::idle(), id);
    stopProcess(id);
    const auto live = tunnelPortMap_.extract(id);
    refreshClashRules();
    if (tunnelPortMap_.empty()) {
        switchProxyOff(id);
    } else {
        refreshSystemProxy(std::nullopt, std::nullopt);
    }
    if (!live.empty() && !live.mapped().empty()) {
        ports_.cleanOrphanedPort(live.mapped(), id);
    }
}

void TunnelManager::switchProxyOff(const support::Uuid& id) {
    auto& routing = services_.routing;
    services_.dispatch.global(platform::Priority::userInitiated,
                              [&routing] { routing.removeAllProxy("No active tunnels", false); });
    // Written for any tunnel stopped while none is live, even for one that never ran.
    logs_.add(LogLevel::info, "🔴 System proxy đã tắt (không còn tunnel nào active)", id);
}

void TunnelManager::stopProcess(const support::Uuid& id) {
    const auto process = activeProcess(id);
    if (!process) {
        return;
    }
    const int pid = process->pid();
    activeProcesses_.erase(id);
    prepared_.erase(id);
    process->terminate();
    auto& processes = services_.processes;
    services_.dispatch.globalAfter(
        platform::Priority::normal, kKillDelay,
        [weak = self_.weak(), &dispatch = services_.dispatch, &processes, process, pid, id] {
            if (process->isRunning()) {
                processes.sendSignal(pid, platform::kSignalKill);
            }
            // Once more on purpose, whatever the test above said.
            if (pid >= 1) {
                processes.sendSignal(pid, platform::kSignalKill);
            }
            dispatch.main([weak, pid, id] {
                if (auto* manager = weak.get()) {
                    manager->logs_.append(LogLevel::info, fmt::format("■ Tunnel stopped (PID: {})", pid), id);
                }
            });
        });
}

// It is stopped first, so that it has no time between the two signals: an ssh without a session that is asked
// to end does so with status 0 (ssh's clientloop.c), as though its work were done, and would not come back.
void TunnelManager::endAtOnce(platform::ChildProcess& process) {
    const int pid = process.pid();
    if (pid >= 1) {
        services_.processes.suspend(pid);
    }
    process.terminate();
    if (pid >= 1) {
        services_.processes.sendSignal(pid, platform::kSignalKill);
    }
}

std::vector<support::Uuid> TunnelManager::endAllForSleep(bool cancelPrepared) {
    std::vector<support::Uuid> ended;
    for (const auto& [id, process] : activeProcesses_) {
        endAtOnce(*process);
        ended.push_back(id);
    }
    if (cancelPrepared) {
        // No exit will ever take these away.
        for (const auto& [id, placeholder] : prepared_) {
            activeProcesses_.erase(id);
        }
        prepared_.clear();
    }
    return ended;
}

void TunnelManager::killAllOnQuit() {
    for (const auto& [id, process] : activeProcesses_) {
        endAtOnce(*process);
    }
    activeProcesses_.clear();
    prepared_.clear();
    tunnelPortMap_.clear();
}

void TunnelManager::refreshSystemProxy(const std::optional<support::Uuid>& id,
                                       const std::optional<std::string>& port) {
    auto ports = tunnelPortMap_;
    if (id && port && !port->empty()) {
        ports.insert_or_assign(*id, *port);
    }
    services_.routing.applySystemProxy(std::move(ports));
}

void TunnelManager::refreshClashRules() {
    // The configuration knows live tunnels only, so the records of the others are not copied at each change.
    std::vector<Tunnel> tunnels;
    tunnels.reserve(tunnelPortMap_.size());
    if (const auto* store = services_.routing.tunnelStore(); store != nullptr) {
        std::ranges::copy_if(store->tunnels(), std::back_inserter(tunnels),
                             [this](const auto& tunnel) { return tunnelPortMap_.contains(tunnel.id); });
    }
    services_.dispatch.main([weak = self_.weak(), tunnels = std::move(tunnels)]() mutable {
        if (auto* manager = weak.get()) {
            manager->services_.routing.scheduleRebuild(std::move(tunnels), manager->tunnelPortMap_);
        }
    });
}

} // namespace fernwick
