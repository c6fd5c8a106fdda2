// What the window of proxies and rules, and its sheets, need of the rest of the application.
#pragma once

#include "platform/Dispatch.h"
#include "platform/InstalledApplications.h"
#include "routing/ProxyRuleStore.h"
#include "screens/theme/Theme.h"
#include "tunnel/TunnelManager.h"

#include <string>
#include <vector>

namespace fernwick {

// A tunnel as the window knows it: a snapshot of the time when the window was opened.
struct TunnelName {
    support::Uuid id;
    std::string name;

    bool operator==(const TunnelName&) const = default;
};

using TunnelNames = std::vector<TunnelName>;

// All of it outlives the window.
struct RoutingContext {
    Theme& theme;
    ProxyRuleStore& store;
    TunnelManager& tunnels;
    platform::Dispatch& dispatch;
    platform::InstalledApplications& applications;
};

} // namespace fernwick
