// What the tunnel runtime asks of the routing layer above it, which tells every application what is live.
#pragma once

#include "catalogue/Tunnel.h"
#include "catalogue/TunnelStore.h"

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace fernwick {

// Local port of each tunnel that reached connected and has one.
using TunnelPortMap = std::unordered_map<support::Uuid, std::string>;

class RoutingLayer {
public:
    virtual ~RoutingLayer() = default;

    // Starts serving the proxy auto-config text. Main thread, once at start-up.
    virtual void startPacServer() = 0;

    // The store that was handed to the engine's manager, or null. Main thread.
    [[nodiscard]] virtual TunnelStore* tunnelStore() const = 0;

    // Hands the store to the engine's manager, which comes into being with the first call. Main thread.
    virtual void setTunnelStore(TunnelStore& store) = 0;

    // Plans a rebuild of the engine's configuration from these live tunnels and their ports. Main thread.
    virtual void scheduleRebuild(std::vector<Tunnel> tunnels, TunnelPortMap ports) = 0;

    // Rebuilds the proxy auto-config text from these live ports and the rules as they are now, and points the
    // system's proxy settings at it: on a queue of background priority, later. Main thread.
    virtual void applySystemProxy(TunnelPortMap ports) = 0;

    // Takes the system's proxy settings back; with `wait`, returns when that is done. Background queue; blocks.
    virtual void removeAllProxy(std::string_view reason, bool wait) = 0;

    // Stops serving the proxy auto-config text. Background queue.
    virtual void stopPacServer() = 0;

    // Stops the engine. Background queue; blocks.
    virtual void stopEngine() = 0;
};

// No routing: every request is accepted and has no effect.
class NoRouting final : public RoutingLayer {
public:
    void startPacServer() override {}
    [[nodiscard]] TunnelStore* tunnelStore() const override { return store_; }
    void setTunnelStore(TunnelStore& store) override { store_ = &store; }
    void scheduleRebuild(std::vector<Tunnel> /*tunnels*/, TunnelPortMap /*ports*/) override {}
    void applySystemProxy(TunnelPortMap /*ports*/) override {}
    void removeAllProxy(std::string_view /*reason*/, bool /*wait*/) override {}
    void stopPacServer() override {}
    void stopEngine() override {}

private:
    TunnelStore* store_ = nullptr;
};

} // namespace fernwick
