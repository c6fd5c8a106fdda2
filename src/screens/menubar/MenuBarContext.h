// What the menu-bar icon and its popover need of the rest of the application.
#pragma once

#include "catalogue/TunnelStore.h"
#include "platform/Dispatch.h"
#include "screens/routing/RoutingContext.h"
#include "screens/theme/Theme.h"
#include "tunnel/TunnelManager.h"

#include <functional>

namespace fernwick {

// What the entries of the footer do. An action that is not set hides its entry.
struct MenuBarActions {
    std::function<void(TunnelNames)> openProxyRules;
    std::function<void()> openMainWindow;
    std::function<void()> openSettings;
    std::function<void()> quit;
};

// All references outlive the icon and the popover.
struct MenuBarContext {
    Theme& theme;
    TunnelStore& store;
    TunnelManager& tunnels;
    platform::Dispatch& dispatch;
    MenuBarActions actions;
};

} // namespace fernwick
