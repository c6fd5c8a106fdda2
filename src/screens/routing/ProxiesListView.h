// The tab of proxies. Threads: main thread only.
#pragma once

#include "screens/routing/ProxyRow.h"
#include "screens/routing/RecordTab.h"

namespace fernwick {

class ProxyDetailPanel;

class ProxiesListView final : public RecordTab {
public:
    ProxiesListView(const RoutingContext& context, const TunnelNames& tunnels, QWidget* parent);

    void add() override { edit(std::nullopt); }

private:
    std::size_t fillRows(std::string_view searchText) override;
    [[nodiscard]] support::Uuid idOf(int row) const override { return model_->row(row).id; }
    [[nodiscard]] int rowOf(const support::Uuid& id) const override { return model_->rowOf(id); }
    [[nodiscard]] QString countText() const override;
    bool showPanel(const std::optional<support::Uuid>& id) override;
    void editRecord(const support::Uuid& id) override;
    void removeRecord(const support::Uuid& id) override;
    void moveRecord(std::size_t from, std::size_t before) override;
    void addMenuItems(QMenu& /*menu*/, const support::Uuid& /*id*/) override {}

    // Opens the sheet, of a new proxy without one.
    void edit(std::optional<ProxyConfig> proxy);

    ProxyListModel* model_;
    ProxyDetailPanel* panel_;
};

} // namespace fernwick
