// What becomes of a rule's traffic: the action, the proxy or tunnel that it needs, and what that means.
// Threads: main thread only.
#pragma once

#include "routing/AppRule.h"
#include "routing/ProxyRuleStore.h"
#include "screens/routing/RoutingContext.h"
#include "support/Signal.h"

#include <QWidget>

#include <optional>
#include <vector>

namespace fernwick {

class ChoiceMenu;
class IconLine;

class RuleActionForm final : public QWidget {
public:
    // Edits the action, the proxy and the tunnel of `rule`, which lives longer. Turning to another action
    // leaves the other two as they are.
    RuleActionForm(RoutingContext& context, TunnelNames tunnels, AppRule& rule, QWidget* parent);

private:
    using Target = std::optional<support::Uuid>;

    void addRow(const QString& label, QWidget* menu);
    void buildActions();
    void fillProxies();
    void fillTunnels();
    void refresh();

    const Theme& theme_;
    const ProxyRuleStore& store_;
    TunnelNames tunnels_;
    AppRule& rule_;
    ChoiceMenu* actionMenu_;
    ChoiceMenu* proxyMenu_;
    ChoiceMenu* tunnelMenu_;
    std::vector<Target> proxyIDs_; // of the menu's choices; the first is none
    std::vector<Target> tunnelIDs_;
    IconLine* meaning_;
    support::Subscription proxiesChanged_;
};

} // namespace fernwick
