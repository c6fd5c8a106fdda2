// Keeps the one window of proxies and rules: opens it, brings it to the front, forgets it when it is closed.
// Threads: main thread only.
#pragma once

#include "screens/routing/ProxyRuleWindow.h"

#include <memory>

namespace fernwick {

class ProxyRuleWindowController {
public:
    // All that the context refers to outlives the controller.
    ProxyRuleWindowController(const RoutingContext& context, OpenRuleEditor openRuleEditor);
    ProxyRuleWindowController(const ProxyRuleWindowController&) = delete;
    ProxyRuleWindowController& operator=(const ProxyRuleWindowController&) = delete;
    ~ProxyRuleWindowController();

    // Shows the window with these tunnels, in the order of their list. One that is open comes to the front as
    // it is, and the tunnels are dropped.
    void show(TunnelNames tunnels);

    // The window while it is open, or null.
    [[nodiscard]] ProxyRuleWindow* window() const { return window_.get(); }

private:
    void windowWillClose();

    RoutingContext context_;
    OpenRuleEditor openRuleEditor_;
    std::unique_ptr<ProxyRuleWindow> window_;
};

} // namespace fernwick
