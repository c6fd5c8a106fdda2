// The routing layer whole: what is live among the tunnels reaches every application by two ways side by side,
// the engine with its configuration, and the system's proxy settings with the script that they point at.
// Threads: as RoutingLayer says.
#pragma once

#include "routing/ClashEngine.h"
#include "routing/ClashManager.h"
#include "routing/ProxyRuleStore.h"
#include "routing/SystemProxyPath.h"
#include "tunnel/RoutingLayer.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace fernwick {

// What the layer needs of the rest of the application; all of it outlives the layer.
struct RoutingServices {
    EngineServices engine;
    platform::Processes& processes;
    platform::NetworkProxySettings& proxySettings;
    ProxyRuleStore& rules;
    std::vector<std::string> brewCandidates;      // absolute paths; the first that exists is Homebrew
    std::function<TunnelPortMap()> tunnelPortMap; // of the tunnels that are live now
    std::uint16_t pacPort = PACServer::kPort;
};

class Routing final : public RoutingLayer {
public:
    // How long the end of the application is held up for the system to take note that the engine ends.
    static constexpr std::chrono::seconds kStopLimit{2};

    explicit Routing(RoutingServices services);
    Routing(const Routing&) = delete;
    Routing& operator=(const Routing&) = delete;

    void startPacServer() override;
    [[nodiscard]] TunnelStore* tunnelStore() const override;
    void setTunnelStore(TunnelStore& store) override;
    void scheduleRebuild(std::vector<Tunnel> tunnels, TunnelPortMap ports) override;
    void applySystemProxy(TunnelPortMap ports) override;
    void removeAllProxy(std::string_view reason, bool wait) override;
    void stopPacServer() override;
    void stopEngine() override;

    // The engine and its manager; null until a tunnel store was set. Main thread.
    [[nodiscard]] ClashEngine* engine() { return engine_ ? &*engine_ : nullptr; }
    [[nodiscard]] ClashManager* manager() { return manager_ ? &*manager_ : nullptr; }

private:
    // The proxies and the enabled rules as they are now.
    [[nodiscard]] std::shared_ptr<const RoutedRules> routedRules();

    RoutingServices services_;
    std::shared_ptr<SystemProxyPath> systemProxy_; // shared with what is queued
    std::shared_ptr<const RoutedRules> routed_;    // null after a change, until it is asked for
    std::vector<support::Subscription> changes_;
    std::optional<ClashEngine> engine_;
    std::optional<ClashManager> manager_;
};

} // namespace fernwick
