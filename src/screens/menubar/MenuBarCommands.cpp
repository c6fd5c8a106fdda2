#include "screens/menubar/MenuBarCommands.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace fernwick {

MenuBarCommands::MenuBarCommands(MenuBarContext context) : context_(std::move(context)), self_(*this) {}

std::vector<MenuBarEntry> MenuBarCommands::entries() const {
    const MenuBarActions& actions = context_.actions;
    const auto guarded = [this](auto work) {
        return [weak = self_.weak(), work = std::move(work)] {
            if (auto* self = weak.get()) {
                work(*self);
            }
        };
    };
    std::vector<MenuBarEntry> entries;
    if (actions.openProxyRules) {
        entries.push_back({Icon::shieldNetwork, QStringLiteral("Proxies & Rules..."),
                           QStringLiteral("proxyRulesEntry"), false,
                           guarded([](MenuBarCommands& self) { self.openProxyRules(); })});
    }
    if (actions.openMainWindow) {
        entries.push_back({Icon::window, QStringLiteral("Open Main Window"),
                           QStringLiteral("openMainWindowEntry"), false, guarded([](MenuBarCommands& self) {
                               self.runAfterPopoverCloses(self.context_.actions.openMainWindow);
                           })});
    }
    if (actions.openSettings) {
        entries.push_back({Icon::gear, QStringLiteral("Preferences..."), QStringLiteral("preferencesEntry"),
                           false,
                           guarded([](MenuBarCommands& self) { self.context_.actions.openSettings(); })});
    }
    if (actions.quit) {
        entries.push_back({Icon::power, QStringLiteral("Quit Fernwick"), QStringLiteral("quitEntry"), true,
                           guarded([](MenuBarCommands& self) { self.context_.actions.quit(); })});
    }
    return entries;
}

void MenuBarCommands::connectAll() {
    // A copy: what is started may change the list.
    const auto tunnels = context_.store.tunnels();
    for (const Tunnel& tunnel : tunnels) {
        if (!context_.tunnels.isActive(tunnel.id)) {
            context_.tunnels.connect(tunnel, context_.store);
        }
    }
}

void MenuBarCommands::disconnectAll() {
    std::vector<support::Uuid> ids;
    std::ranges::transform(context_.store.tunnels(), std::back_inserter(ids), &Tunnel::id);
    std::ranges::for_each(ids, [this](const auto& id) { context_.tunnels.disconnect(id); });
}

void MenuBarCommands::toggle(const support::Uuid& id) {
    const Tunnel* tunnel = context_.store.find(id);
    if (tunnel == nullptr) {
        return;
    }
    if (context_.tunnels.isActive(id)) {
        context_.tunnels.disconnect(id);
    } else {
        context_.tunnels.connect(Tunnel(*tunnel), context_.store);
    }
}

void MenuBarCommands::openProxyRules() {
    TunnelNames names;
    std::ranges::transform(context_.store.tunnels(), std::back_inserter(names),
                           [](const Tunnel& tunnel) { return TunnelName{tunnel.id, tunnel.name}; });
    runAfterPopoverCloses([open = context_.actions.openProxyRules, names = std::move(names)] { open(names); });
}

void MenuBarCommands::runAfterPopoverCloses(std::function<void()> action) {
    context_.dispatch.mainAfter(kCloseDelay, [weak = self_.weak(), action = std::move(action)] {
        if (!weak.expired()) {
            action();
        }
    });
}

} // namespace fernwick
