// The owner of every running ssh child: starts and stops tunnels, knows their status and logs, decides when one
// counts as up, and tells the routing layer which local ports are live. A status comes only from process facts:
// the launch, a timer and the exit; what the child prints never changes it. Threads: main thread only.
#pragma once

#include "catalogue/TunnelStatus.h"
#include "catalogue/TunnelStore.h"
#include "platform/ChildProcess.h"
#include "platform/Dispatch.h"
#include "support/NotificationCenter.h"
#include "support/Signal.h"
#include "support/Weak.h"
#include "tunnel/PortHygiene.h"
#include "tunnel/Reconnector.h"
#include "tunnel/RoutingLayer.h"
#include "tunnel/SshLauncher.h"
#include "tunnel/TunnelLogs.h"
#include "tunnel/TunnelRunner.h"

#include <memory>
#include <optional>
#include <string>
#include <unordered_map>

namespace fernwick {

// What the manager needs of the rest of the application; all of it outlives the manager.
struct TunnelServices {
    platform::Dispatch& dispatch;
    const platform::Clock& clock;
    platform::Processes& processes;
    const platform::HostEnvironment& host;
    platform::UserDefaults& defaults;
    support::NotificationCenter& notifications;
    RoutingLayer& routing;
    platform::CommandRunner& commands;
    platform::FileSystem& files;
    const KeychainStore& keychain;
    platform::PowerEvents& power;
    std::unique_ptr<platform::NetworkMonitor> networkMonitor; // the manager's own
};

class TunnelManager final : private TunnelRunner {
public:
    // How long a child must live after its launch to count as connected.
    static constexpr platform::Duration kConfirmDelay{1500};

    // Starts the PAC server, watches the network and the machine's sleep, and ends all children when the
    // application announces its end.
    explicit TunnelManager(TunnelServices services);
    TunnelManager(const TunnelManager&) = delete;
    TunnelManager& operator=(const TunnelManager&) = delete;

    // Starts a tunnel; does nothing while the manager holds a process for its id. The store outlives the
    // manager.
    void connect(const Tunnel& tunnel, TunnelStore& store);

    // Stops a tunnel; safe for one that is not running.
    void disconnect(const support::Uuid& id);

    // Ends every child at once: SIGTERM, then SIGKILL. No log, no status change.
    void killAllOnQuit();

    // The status, or nothing for a tunnel that was never touched.
    [[nodiscard]] std::optional<TunnelStatus> status(const support::Uuid& id) const override;

    // Whether the tunnel is connecting or connected; a tunnel without a status is not.
    [[nodiscard]] bool isActive(const support::Uuid& id) const;

    // The local ports of the live tunnels.
    [[nodiscard]] const TunnelPortMap& tunnelPortMap() const { return tunnelPortMap_; }

    // The process held for the id (a placeholder while it is being prepared), or null.
    [[nodiscard]] std::shared_ptr<platform::ChildProcess> activeProcess(const support::Uuid& id) const;

    [[nodiscard]] TunnelLogs& logs() { return logs_; }
    [[nodiscard]] const TunnelLogs& logs() const { return logs_; }

    // Has the system's proxy settings follow the live ports, with `id` and `port` added when both are given and
    // the port is not empty.
    void refreshSystemProxy(const std::optional<support::Uuid>& id, const std::optional<std::string>& port);

    // Hands the tunnels and live ports to the engine.
    void refreshClashRules();

    // Emitted with the tunnel's id after its status was assigned.
    support::Signal<const support::Uuid&> statusChanged;

private:
    void updateStatus(TunnelStatus status, const support::Uuid& id) override;
    void relaunch(const Tunnel& tunnel, TunnelStore& store) override;
    std::vector<support::Uuid> endAllForSleep(bool cancelPrepared) override;
    bool takePrepared(const support::Uuid& id, const std::shared_ptr<platform::ChildProcess>& placeholder);
    void launchProcess(const Tunnel& tunnel, TunnelStore& store);
    void launchFailed(const platform::LaunchError& error, const support::Uuid& id, TunnelStore& store);
    platform::ProcessHandlers childHandlers(const Tunnel& tunnel, TunnelStore& store);
    void confirmConnected(Tunnel tunnel, TunnelStore& store);
    void handleTermination(int status, const Tunnel& tunnel, TunnelStore& store);
    void stopProcess(const support::Uuid& id);
    void endAtOnce(platform::ChildProcess& process);
    void switchProxyOff(const support::Uuid& id);

    TunnelServices services_;
    TunnelLogs logs_;
    PortHygiene ports_;
    Reconnector reconnector_;
    SshLauncher launcher_;
    std::unordered_map<support::Uuid, TunnelStatus> statuses_;
    std::unordered_map<support::Uuid, std::shared_ptr<platform::ChildProcess>> activeProcesses_;
    std::unordered_map<support::Uuid, std::shared_ptr<platform::ChildProcess>> prepared_; // not launched yet
    TunnelPortMap tunnelPortMap_;
    support::Subscription willTerminate_;
    support::WeakSource<TunnelManager> self_;
};

} // namespace fernwick
