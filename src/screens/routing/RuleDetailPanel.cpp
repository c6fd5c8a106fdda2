#include "screens/routing/RuleDetailPanel.h"

#include "screens/routing/Capsule.h"
#include "screens/routing/EntryListView.h"
#include "screens/routing/RoutingTexts.h"
#include "screens/theme/DisplayText.h"

#include <QPushButton>

#include <algorithm>
#include <utility>

namespace fernwick {

RuleDetailPanel::RuleDetailPanel(const RoutingContext& context, const TunnelNames& tunnels,
                                 std::function<void(const AppRule&)> onEdit, QWidget* parent)
    : DetailPanel(context.theme, QStringLiteral("rulePanel"), parent),
      store_(context.store),
      tunnels_(tunnels),
      onEdit_(std::move(onEdit)),
      disabled_(addHeaderCapsule()),
      action_(addHeaderCapsule()) {
    disabled_->setObjectName(QStringLiteral("disabledCapsule"));
    disabled_->setLook({.text = QStringLiteral("DISABLED"), .color = &Palette::secondary});
    action_->setObjectName(QStringLiteral("actionCapsule"));
    connect(&editButton(), &QPushButton::clicked, this, [this] {
        if (shown_) {
            onEdit_(AppRule(*shown_));
        }
    });
    show(std::nullopt);
}

bool RuleDetailPanel::show(const std::optional<support::Uuid>& ruleID) {
    const auto& rules = store_.rules();
    const auto found = ruleID ? std::ranges::find(rules, *ruleID, &AppRule::id) : rules.end();
    if (found == rules.end()) {
        shown_.reset();
        showEmpty(Icon::list, QStringLiteral("No Rule Selected"),
                  QStringLiteral("Select a rule from the list"));
        return false;
    }
    const auto before = std::exchange(shown_, *found);
    const auto targetBefore = std::exchange(target_, targetName());
    if (before != shown_ || targetBefore != target_) {
        showRule(before && before->id == shown_->id);
    }
    return true;
}

std::optional<QString> RuleDetailPanel::targetName() const {
    if (shown_->action == RuleAction::tunnel) {
        return tunnelName(tunnels_, shown_->tunnelID);
    }
    const ProxyConfig* proxy = shown_->action == RuleAction::proxy ? store_.proxy(shown_->proxyID) : nullptr;
    return proxy != nullptr ? std::optional(displayLine(proxy->name)) : std::nullopt;
}

void RuleDetailPanel::showRule(bool sameRecord) {
    beginContent(shown_->name, QStringLiteral("Edit"), sameRecord);
    disabled_->setVisible(!shown_->isEnabled);
    action_->setLook({.text = actionText(shown_->action), .color = actionColor(shown_->action)});
    addRouting();
    addEntries(QStringLiteral("Applications (%1)"), shown_->applications, Icon::appBadge, QString());
    addEntries(QStringLiteral("Target Hosts (%1)"), shown_->targetHosts, std::nullopt,
               QStringLiteral("Any host"));
    addEntries(QStringLiteral("Target Ports (%1)"), shown_->targetPorts, std::nullopt, QStringLiteral("Any"));
}

void RuleDetailPanel::addRouting() {
    auto& section = addSection(QString());
    auto* line = new DetailLine(theme(), actionIcon(shown_->action), actionColor(shown_->action),
                                actionText(shown_->action), &section);
    line->setObjectName(QStringLiteral("routingLine"));
    if (target_) {
        line->addCaption(QStringLiteral("via %1").arg(*target_));
    }
    section.addRow(line);
}

void RuleDetailPanel::addEntries(const QString& what, const std::vector<std::string>& entries,
                                 std::optional<Icon> icon, const QString& whenNone) {
    const QString title = what.arg(entries.size());
    auto& section = addSection(title);
    if (entries.empty()) {
        if (!whenNone.isEmpty()) {
            auto* none = makeCaption(whenNone, theme().font(12), &section);
            none->setObjectName(QStringLiteral("whenNone"));
            section.addRow(none);
        }
        return;
    }
    std::vector<EntryLine> lines;
    lines.reserve(entries.size());
    for (const auto& entry : entries) {
        lines.push_back({.text = displayLine(entry), .icon = icon, .isAddress = !icon});
    }
    section.addRow(new EntryListView(theme(), title, theme().font(12), std::move(lines), &section));
}

} // namespace fernwick
