#include "screens/routing/RulesListView.h"

#include "screens/routing/RoutingTexts.h"
#include "screens/routing/RuleDetailPanel.h"

#include <QMenu>

#include <algorithm>
#include <utility>

namespace fernwick {

RulesListView::RulesListView(const RoutingContext& context, const TunnelNames& tunnels,
                             OpenRuleEditor openRuleEditor, QWidget* parent)
    : RecordTab(context, tunnels, parent),
      openRuleEditor_(std::move(openRuleEditor)),
      model_(new RuleListModel(this)),
      panel_(nullptr) {
    setObjectName(QStringLiteral("rulesTab"));
    const ListColumnTexts texts{.name = QStringLiteral("Rules"),
                                .placeholder = QStringLiteral("Search rules..."),
                                .addHelp = QStringLiteral("Add rule"),
                                .removeHelp = QStringLiteral("Remove selected rule")};
    buildList(texts, {Icon::list, QStringLiteral("No Rules"), QStringLiteral("Click + to add a routing rule")},
              *model_, *new RuleRowDelegate(context.theme, *model_, this),
              [this](int row) { toggle(idOf(row)); });
    panel_ = new RuleDetailPanel(context, tunnels, [this](const AppRule& rule) { edit(rule); }, this);
    addPanel(*panel_);
    subscriptions_.push_back(context_.store.rulesChanged.connect([this] { refresh(); }));
    subscriptions_.push_back(context_.store.proxiesChanged.connect([this] { refreshPanel(); }));
    refresh();
}

std::size_t RulesListView::fillRows(std::string_view searchText) {
    const auto& rules = context_.store.rules();
    std::vector<RuleRow> rows;
    const auto kept = filteredRules(rules, searchText);
    rows.reserve(kept.size());
    for (const AppRule* rule : kept) {
        rows.emplace_back(*rule);
    }
    model_->setRows(std::move(rows));
    return rules.size();
}

QString RulesListView::countText() const {
    return activeCountText(context_.store.rules());
}

bool RulesListView::showPanel(const std::optional<support::Uuid>& id) {
    return panel_->show(id);
}

const AppRule* RulesListView::find(const support::Uuid& id) const {
    const auto& rules = context_.store.rules();
    const auto found = std::ranges::find(rules, id, &AppRule::id);
    return found != rules.end() ? &*found : nullptr;
}

void RulesListView::editRecord(const support::Uuid& id) {
    if (const AppRule* rule = find(id)) {
        edit(*rule);
    }
}

void RulesListView::edit(std::optional<AppRule> rule) {
    if (!raiseOpenSheet()) {
        openRuleEditor_(window(), tunnels_, std::move(rule));
    }
}

void RulesListView::removeRecord(const support::Uuid& id) {
    context_.store.deleteRule(id);
}

void RulesListView::moveRecord(std::size_t from, std::size_t before) {
    context_.store.moveRules({from}, before);
}

void RulesListView::addMenuItems(QMenu& menu, const support::Uuid& id) {
    const AppRule* rule = find(id);
    const bool isEnabled = rule != nullptr && rule->isEnabled;
    menu.addAction(isEnabled ? QStringLiteral("Disable") : QStringLiteral("Enable"), this,
                   [this, id] { toggle(id); });
}

void RulesListView::toggle(const support::Uuid& id) {
    const AppRule* rule = find(id);
    if (rule == nullptr) {
        return;
    }
    AppRule changed = *rule;
    changed.isEnabled = !changed.isEnabled;
    context_.store.updateRule(changed);
    context_.tunnels.refreshSystemProxy(std::nullopt, std::nullopt);
    context_.tunnels.refreshClashRules();
}

} // namespace fernwick
