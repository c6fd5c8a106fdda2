// The tab of rules. Threads: main thread only.
#pragma once

#include "screens/routing/RecordTab.h"
#include "screens/routing/RuleRow.h"

#include <functional>

namespace fernwick {

class RuleDetailPanel;

// Opens the sheet that edits a rule, of a new one without a rule, over that widget's window. The tunnels are
// those that the window knows, and outlive the sheet.
using OpenRuleEditor =
    std::function<void(QWidget* parent, const TunnelNames& tunnels, std::optional<AppRule> rule)>;

class RulesListView final : public RecordTab {
public:
    RulesListView(const RoutingContext& context, const TunnelNames& tunnels, OpenRuleEditor openRuleEditor,
                  QWidget* parent);

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
    void addMenuItems(QMenu& menu, const support::Uuid& id) override;

    [[nodiscard]] const AppRule* find(const support::Uuid& id) const;
    void edit(std::optional<AppRule> rule);

    // Switches the rule on or off, here and wherever traffic is routed.
    void toggle(const support::Uuid& id);

    OpenRuleEditor openRuleEditor_;
    RuleListModel* model_;
    RuleDetailPanel* panel_;
};

} // namespace fernwick
