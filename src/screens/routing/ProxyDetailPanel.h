// The chosen proxy, read-only: its server, login, tunnel, and the rules that send traffic to it.
// Threads: main thread only.
#pragma once

#include "routing/ProxyRuleStore.h"
#include "screens/routing/DetailPanel.h"
#include "screens/routing/EntryListView.h"
#include "screens/routing/RoutingContext.h"

#include <functional>
#include <optional>

namespace fernwick {

class ProxyDetailPanel final : public DetailPanel {
public:
    ProxyDetailPanel(const RoutingContext& context, const TunnelNames& tunnels,
                     std::function<void(const ProxyConfig&)> onEdit, QWidget* parent);

    // Shows the proxy of that id as the store has it now; without an id, or a proxy, that there is none.
    // Returns whether there is one.
    bool show(const std::optional<support::Uuid>& proxyID);

private:
    void showProxy(bool sameRecord);
    void addUsers();

    const ProxyRuleStore& store_;
    const TunnelNames& tunnels_;
    std::function<void(const ProxyConfig&)> onEdit_;
    QLabel* protocol_;
    std::optional<ProxyConfig> shown_;
    std::vector<EntryLine> users_; // the rules that refer to it
};

} // namespace fernwick
