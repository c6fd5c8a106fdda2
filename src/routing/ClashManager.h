// Decides when the engine gets a new configuration: gathers changes for a while, leaves out what is the same
// text, and hands the rest to the engine. Threads: main thread, unless an operation says otherwise.
#pragma once

#include "catalogue/TunnelStore.h"
#include "platform/ChildProcess.h"
#include "platform/Clock.h"
#include "platform/Dispatch.h"
#include "platform/FileSystem.h"
#include "platform/HostEnvironment.h"
#include "routing/ClashEngine.h"
#include "routing/ProxyRuleStore.h"
#include "routing/RoutedRules.h"
#include "routing/SilentInstall.h"
#include "support/Signal.h"
#include "support/StandardOutput.h"
#include "support/Weak.h"
#include "tunnel/RoutingLayer.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace fernwick {

// What the manager needs of the rest of the application; all of it outlives the manager.
struct ClashManagerServices {
    platform::Dispatch& dispatch;
    const platform::Clock& clock;
    platform::FileSystem& files;
    platform::Processes& processes;
    const platform::HostEnvironment& host;
    ClashEngine& engine;
    const ProxyRuleStore& rules;
    std::function<TunnelPortMap()> tunnelPortMap; // of the tunnels that are live now
    std::vector<std::string> brewCandidates;      // absolute paths; the first that exists is Homebrew
    support::PrintLine print = support::printLine;
};

class ClashManager {
public:
    // One second later the engine gets its first configuration, or, where its program is missing, Homebrew is
    // asked for it.
    explicit ClashManager(ClashManagerServices services);
    ClashManager(const ClashManager&) = delete;
    ClashManager& operator=(const ClashManager&) = delete;

    // Whether schedules are heeded at all. On at first.
    [[nodiscard]] bool isEnabled() const { return isEnabled_; }
    void setEnabled(bool enabled);

    // The engine's status.
    [[nodiscard]] const ClashEngineStatus& engineStatus() const { return engineStatus_; }

    // The store whose tunnels `rebuildNow` reads, or null. It outlives the manager.
    [[nodiscard]] TunnelStore* tunnelStore() const { return tunnelStore_; }
    void setTunnelStore(TunnelStore* store) { tunnelStore_ = store; }

    // Applies a configuration of these a second later, two with the first live tunnel. Takes the place of what
    // was scheduled before.
    void scheduleRebuild(std::vector<Tunnel> tunnels, TunnelPortMap tunnelPorts,
                         std::shared_ptr<const RoutedRules> routed);

    // Hands the engine a configuration of these, unless it is the text that it got last. Of the tunnels those
    // count that are live by `tunnelPorts`.
    void applyConfig(std::vector<Tunnel> tunnels, const TunnelPortMap& tunnelPorts,
                     const std::vector<ProxyConfig>& proxies, const std::vector<AppRule>& rules);

    // Applies what the stores hold now. Does nothing where the engine's program is missing.
    void rebuildNow();

    // Calls off what is scheduled, ends a Homebrew that runs, and stops the engine. Any thread, while the
    // manager lives. `asked` is called on a background queue once the system was asked to end the engine.
    void shutdown(std::function<void()> asked = {});

    support::Signal<> isEnabledChanged;
    support::Signal<> engineStatusChanged;

private:
    [[nodiscard]] bool hasEngineBinary() const;
    void ensureEngineBinary();
    void installed(bool success);

    ClashManagerServices services_;
    SilentInstall silentInstall_;
    bool isEnabled_ = true;
    ClashEngineStatus engineStatus_;
    std::unique_ptr<platform::Timer> rebuildDebounce_;
    std::atomic<std::uint64_t> schedule_{0}; // the number of the one that counts
    std::size_t lastActiveTunnelCount_ = 0;
    std::string lastConfig_;
    TunnelStore* tunnelStore_ = nullptr;
    support::Subscription engineStatusMirror_;
    support::WeakSource<ClashManager> self_{*this};
};

} // namespace fernwick
