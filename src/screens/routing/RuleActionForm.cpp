#include "screens/routing/RuleActionForm.h"

#include "screens/routing/FormRow.h"
#include "screens/theme/ChoiceMenu.h"
#include "screens/theme/DisplayText.h"
#include "screens/theme/Grid.h"
#include "screens/theme/IconLine.h"

#include <QVBoxLayout>

#include <algorithm>
#include <array>

namespace fernwick {

namespace {

constexpr int kLabelWidth = 60;

struct ActionLook {
    RuleAction action;
    Icon icon;
    NamedColor color;
    const char16_t* meaning;
};

constexpr std::array kLooks{ActionLook{RuleAction::direct, Icon::arrowRight, &Palette::green,
                                       u"Traffic \u0111i th\u1EB3ng, kh\u00F4ng qua proxy"},
                            ActionLook{RuleAction::proxy, Icon::branch, &Palette::blue,
                                       u"Traffic \u0111i qua proxy \u0111\u00E3 ch\u1ECDn"},
                            ActionLook{RuleAction::block, Icon::crossCircle, &Palette::red,
                                       u"Traffic b\u1ECB ch\u1EB7n ho\u00E0n to\u00E0n"},
                            ActionLook{RuleAction::tunnel, Icon::network, &Palette::orange,
                                       u"Traffic \u0111i qua tunnel \u0111\u00E3 ch\u1ECDn"}};

// Shows the choice of that id; a reference to something that is gone is none of the choices.
void showTarget(ChoiceMenu& menu, const std::vector<std::optional<support::Uuid>>& ids,
                const std::optional<support::Uuid>& id) {
    const auto found = std::ranges::find(ids, id);
    menu.showChoice(found == ids.end() ? -1 : static_cast<int>(found - ids.begin()));
}

} // namespace

RuleActionForm::RuleActionForm(RoutingContext& context, TunnelNames tunnels, AppRule& rule, QWidget* parent)
    : QWidget(parent),
      theme_(context.theme),
      store_(context.store),
      tunnels_(std::move(tunnels)),
      rule_(rule),
      actionMenu_(new ChoiceMenu(
          theme_,
          [this](int choice) {
              rule_.action = kLooks.at(static_cast<std::size_t>(choice)).action;
              refresh();
          },
          this)),
      proxyMenu_(new ChoiceMenu(
          theme_, [this](int choice) { rule_.proxyID = proxyIDs_.at(static_cast<std::size_t>(choice)); },
          this)),
      tunnelMenu_(new ChoiceMenu(
          theme_, [this](int choice) { rule_.tunnelID = tunnelIDs_.at(static_cast<std::size_t>(choice)); },
          this)),
      meaning_(new IconLine(theme_, theme_.font(12), this)) {
    actionMenu_->setObjectName(QStringLiteral("actionMenu"));
    proxyMenu_->setObjectName(QStringLiteral("proxyMenu"));
    tunnelMenu_->setObjectName(QStringLiteral("tunnelMenu"));
    meaning_->setObjectName(QStringLiteral("actionMeaning"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(grid::kSmall);
    addRow(QStringLiteral("Action:"), actionMenu_);
    addRow(QStringLiteral("Proxy:"), proxyMenu_);
    addRow(QStringLiteral("Tunnel:"), tunnelMenu_);
    layout->addWidget(meaning_);
    buildActions();
    fillProxies();
    fillTunnels();
    refresh();
    proxiesChanged_ = context.store.proxiesChanged.connect([this] { fillProxies(); });
}

void RuleActionForm::addRow(const QString& label, QWidget* menu) {
    layout()->addWidget(new FormRow(theme_, {label, kLabelWidth}, menu, this));
}

void RuleActionForm::buildActions() {
    for (const auto& look : kLooks) {
        actionMenu_->addChoice(look.icon, displayLine(support::toRawText(look.action)));
    }
}

void RuleActionForm::fillProxies() {
    proxyMenu_->clearChoices();
    proxyMenu_->addChoice(Icon::minus, QStringLiteral("None"));
    proxyMenu_->setPlaceholderText(QStringLiteral("Not found"));
    proxyIDs_ = {std::nullopt};
    for (const auto& proxy : store_.proxies()) {
        proxyMenu_->addChoice(Icon::server, displayLine(proxy.effectiveName()));
        proxyIDs_.emplace_back(proxy.id);
    }
    showTarget(*proxyMenu_, proxyIDs_, rule_.proxyID);
}

void RuleActionForm::fillTunnels() {
    tunnelMenu_->addChoice(Icon::minus, QStringLiteral("None"));
    tunnelMenu_->setPlaceholderText(QStringLiteral("Not found"));
    tunnelIDs_ = {std::nullopt};
    for (const auto& tunnel : tunnels_) {
        tunnelMenu_->addChoice(Icon::network, displayLine(tunnel.name));
        tunnelIDs_.emplace_back(tunnel.id);
    }
    showTarget(*tunnelMenu_, tunnelIDs_, rule_.tunnelID);
}

void RuleActionForm::refresh() {
    const auto* const look = std::ranges::find(kLooks, rule_.action, &ActionLook::action);
    actionMenu_->showChoice(static_cast<int>(look - kLooks.begin()));
    proxyMenu_->parentWidget()->setVisible(rule_.action == RuleAction::proxy);
    tunnelMenu_->parentWidget()->setVisible(rule_.action == RuleAction::tunnel);
    meaning_->showLine({look->icon, look->color, &Palette::secondary}, QString::fromUtf16(look->meaning));
}

} // namespace fernwick
