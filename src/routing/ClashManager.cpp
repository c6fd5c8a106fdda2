#include "routing/ClashManager.h"

#include "routing/ClashConfig.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace fernwick {

namespace {

using namespace std::chrono_literals;

constexpr auto kBinaryCheckDelay = 1000ms;
constexpr auto kAfterInstall = 500ms;
constexpr platform::Duration kFirstTunnelDelay = 2000ms;
constexpr platform::Duration kRebuildDelay = 1000ms;

} // namespace

ClashManager::ClashManager(ClashManagerServices services)
    : services_(std::move(services)),
      silentInstall_(services_.dispatch, services_.files, services_.processes, services_.host,
                     services_.brewCandidates),
      engineStatus_(services_.engine.status()),
      engineStatusMirror_(services_.engine.statusChanged.connect([this] {
          engineStatus_ = services_.engine.status();
          engineStatusChanged.emit();
      })) {
    services_.dispatch.mainAfter(kBinaryCheckDelay, [weak = self_.weak()] {
        if (auto* manager = weak.get()) {
            manager->ensureEngineBinary();
        }
    });
}

void ClashManager::setEnabled(bool enabled) {
    isEnabled_ = enabled;
    isEnabledChanged.emit();
}

bool ClashManager::hasEngineBinary() const {
    const auto& binary = services_.engine.mihomoURL();
    return binary && services_.files.exists(*binary);
}

void ClashManager::ensureEngineBinary() {
    if (hasEngineBinary()) {
        rebuildNow();
        return;
    }
    silentInstall_.run([weak = self_.weak()](bool success) {
        if (auto* manager = weak.get()) {
            manager->installed(success);
        }
    });
}

// By design a failure is silent: the next start of the engine says what is missing.
void ClashManager::installed(bool success) {
    if (!success) {
        return;
    }
    services_.dispatch.mainAfter(kAfterInstall, [weak = self_.weak()] {
        if (auto* manager = weak.get()) {
            manager->rebuildNow();
        }
    });
}

void ClashManager::rebuildNow() {
    if (!hasEngineBinary()) {
        return;
    }
    applyConfig(tunnelStore_ != nullptr ? tunnelStore_->tunnels() : std::vector<Tunnel>(),
                services_.tunnelPortMap(), services_.rules.proxies(), services_.rules.enabledRules());
}

void ClashManager::scheduleRebuild(std::vector<Tunnel> tunnels, TunnelPortMap tunnelPorts,
                                   std::shared_ptr<const RoutedRules> routed) {
    if (!isEnabled_) {
        return;
    }
    const auto activeCount = static_cast<std::size_t>(
        std::ranges::count_if(tunnels, [&](const auto& tunnel) { return tunnelPorts.contains(tunnel.id); }));
    const bool first = activeCount > 0 && lastActiveTunnelCount_ < 1;
    lastActiveTunnelCount_ = activeCount;
    rebuildDebounce_ = services_.dispatch.oneShotTimer(
        first ? kFirstTunnelDelay : kRebuildDelay,
        [this, number = ++schedule_, tunnels = std::move(tunnels), tunnelPorts = std::move(tunnelPorts),
         routed = std::move(routed)]() mutable {
            if (schedule_ == number) {
                applyConfig(std::move(tunnels), tunnelPorts, routed->proxies, routed->enabled);
            }
        });
}

void ClashManager::applyConfig(std::vector<Tunnel> tunnels, const TunnelPortMap& tunnelPorts,
                               const std::vector<ProxyConfig>& proxies, const std::vector<AppRule>& rules) {
    std::erase_if(tunnels, [&](const auto& tunnel) { return !tunnelPorts.contains(tunnel.id); });
    auto text = generateClashConfig(tunnels, tunnelPorts, proxies, rules, services_.clock);
    if (text == lastConfig_) {
        services_.print("[ClashManager] Config unchanged, skipping rebuild");
        return;
    }
    lastConfig_ = text;
    auto& engine = services_.engine;
    if (engine.status() == ClashEngineStatus::running()) {
        engine.reload(std::move(text));
    } else {
        engine.start(std::move(text));
    }
}

void ClashManager::shutdown(std::function<void()> asked) {
    ++schedule_; // the timer, which belongs to the main thread, then does nothing
    silentInstall_.terminate();
    services_.engine.stop(std::move(asked)); // blocks on a background queue only
}

} // namespace fernwick
