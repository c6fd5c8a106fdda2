#include "routing/Routing.h"

#include <semaphore>
#include <utility>

namespace fernwick {

Routing::Routing(RoutingServices services)
    : services_(std::move(services)),
      systemProxy_(std::make_shared<SystemProxyPath>(services_.proxySettings, services_.engine.clock,
                                                     services_.pacPort, services_.engine.print)) {
    changes_.push_back(services_.rules.proxiesChanged.connect([this] { routed_.reset(); }));
    changes_.push_back(services_.rules.rulesChanged.connect([this] { routed_.reset(); }));
}

void Routing::startPacServer() {
    systemProxy_->start(services_.engine.dispatch);
}

TunnelStore* Routing::tunnelStore() const {
    return manager_ ? manager_->tunnelStore() : nullptr;
}

void Routing::setTunnelStore(TunnelStore& store) {
    if (!manager_) {
        engine_.emplace(services_.engine);
        manager_.emplace(ClashManagerServices{.dispatch = services_.engine.dispatch,
                                              .clock = services_.engine.clock,
                                              .files = services_.engine.files,
                                              .processes = services_.processes,
                                              .host = services_.engine.host,
                                              .engine = *engine_,
                                              .rules = services_.rules,
                                              .tunnelPortMap = services_.tunnelPortMap,
                                              .brewCandidates = services_.brewCandidates,
                                              .print = services_.engine.print});
    }
    manager_->setTunnelStore(&store);
}

void Routing::scheduleRebuild(std::vector<Tunnel> tunnels, TunnelPortMap ports) {
    if (manager_) {
        manager_->scheduleRebuild(std::move(tunnels), std::move(ports), routedRules());
    }
}

void Routing::applySystemProxy(TunnelPortMap ports) {
    systemProxy_->apply(services_.engine.dispatch, routedRules(), std::move(ports));
}

std::shared_ptr<const RoutedRules> Routing::routedRules() {
    if (!routed_) {
        routed_ =
            std::make_shared<const RoutedRules>(services_.rules.enabledRules(), services_.rules.proxies());
    }
    return routed_;
}

void Routing::removeAllProxy(std::string_view reason, bool wait) {
    systemProxy_->removeAllProxy(reason, wait);
}

void Routing::stopPacServer() {
    systemProxy_->stop();
}

void Routing::stopEngine() {
    if (!manager_) {
        return;
    }
    // Shared with the engine, which may answer after the wait was given up.
    const auto asked = std::make_shared<std::binary_semaphore>(0);
    manager_->shutdown([asked] { asked->release(); });
    (void)asked->try_acquire_for(kStopLimit);
}

} // namespace fernwick
