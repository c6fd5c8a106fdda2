// The chosen rule, read-only: where it sends traffic, and which traffic.
// Threads: main thread only.
#pragma once

#include "routing/ProxyRuleStore.h"
#include "screens/routing/DetailPanel.h"
#include "screens/routing/RoutingContext.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace fernwick {

class RuleDetailPanel final : public DetailPanel {
public:
    RuleDetailPanel(const RoutingContext& context, const TunnelNames& tunnels,
                    std::function<void(const AppRule&)> onEdit, QWidget* parent);

    // Shows the rule of that id as the store has it now; without an id, or a rule, that there is none. Returns
    // whether there is one.
    bool show(const std::optional<support::Uuid>& ruleID);

private:
    void showRule(bool sameRecord);
    void addRouting();
    void addEntries(const QString& what, const std::vector<std::string>& entries, std::optional<Icon> icon,
                    const QString& whenNone);
    [[nodiscard]] std::optional<QString> targetName() const;

    const ProxyRuleStore& store_;
    const TunnelNames& tunnels_;
    std::function<void(const AppRule&)> onEdit_;
    Capsule* disabled_;
    Capsule* action_;
    std::optional<AppRule> shown_;
    std::optional<QString> target_; // the name of the proxy or tunnel that it sends traffic to
};

} // namespace fernwick
