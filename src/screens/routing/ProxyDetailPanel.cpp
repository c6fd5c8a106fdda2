#include "screens/routing/ProxyDetailPanel.h"

#include "screens/routing/RoutingTexts.h"
#include "screens/theme/DisplayText.h"

#include <QPushButton>

#include <utility>

namespace fernwick {

namespace {

constexpr int kPasswordMarks = 8; // whatever its length

std::vector<EntryLine> usersOf(const support::Uuid& proxyID, const std::vector<AppRule>& rules) {
    std::vector<EntryLine> users;
    for (const AppRule& rule : rules) {
        if (rule.proxyID == proxyID) {
            const QString name = displayLine(rule.name);
            users.push_back({.text = name,
                             .icon = std::nullopt,
                             .dot = rule.isEnabled ? &Palette::green : &Palette::gray,
                             .spoken = QStringLiteral("%1, %2").arg(
                                 name, rule.isEnabled ? QStringLiteral("on") : QStringLiteral("off"))});
        }
    }
    return users;
}

} // namespace

ProxyDetailPanel::ProxyDetailPanel(const RoutingContext& context, const TunnelNames& tunnels,
                                   std::function<void(const ProxyConfig&)> onEdit, QWidget* parent)
    : DetailPanel(context.theme, QStringLiteral("proxyPanel"), parent),
      store_(context.store),
      tunnels_(tunnels),
      onEdit_(std::move(onEdit)),
      protocol_(addHeaderLine()) {
    protocol_->setObjectName(QStringLiteral("proxyPanelProtocol"));
    connect(&editButton(), &QPushButton::clicked, this, [this] {
        if (shown_) {
            onEdit_(ProxyConfig(*shown_));
        }
    });
    show(std::nullopt);
}

bool ProxyDetailPanel::show(const std::optional<support::Uuid>& proxyID) {
    const ProxyConfig* proxy = store_.proxy(proxyID);
    if (proxy == nullptr) {
        shown_.reset();
        showEmpty(Icon::network, QStringLiteral("No Proxy Selected"),
                  QStringLiteral("Select a proxy from the list"));
        return false;
    }
    const auto before = std::exchange(shown_, *proxy);
    const auto usersBefore = std::exchange(users_, usersOf(proxy->id, store_.rules()));
    if (before != shown_ || usersBefore != users_) {
        showProxy(before && before->id == shown_->id);
    }
    return true;
}

void ProxyDetailPanel::showProxy(bool sameRecord) {
    const QString protocol = protocolText(shown_->proto);
    beginContent(shown_->name, QStringLiteral("Edit"), sameRecord);
    protocol_->setText(protocol);
    const auto addPair = [&](DetailSection& section, const QString& key, const QString& value) {
        section.addRow(new DetailKV(theme(), key, value, &section));
    };
    auto& server = addSection(QStringLiteral("Server"));
    addPair(server, QStringLiteral("Protocol"), protocol);
    addPair(server, QStringLiteral("Address"), displayLine(shown_->address));
    addPair(server, QStringLiteral("Port"), QString::number(shown_->port));
    if (shown_->authentication.enabled) {
        auto& login = addSection(QStringLiteral("Authentication"));
        addPair(login, QStringLiteral("Username"), displayLine(shown_->authentication.username));
        addPair(login, QStringLiteral("Password"), QString(kPasswordMarks, QChar(u'•')));
    }
    if (shown_->tunnelID) {
        auto& tunnel = addSection(QStringLiteral("Bound Tunnel"));
        if (const auto name = tunnelName(tunnels_, shown_->tunnelID)) {
            tunnel.addRow(new DetailLine(theme(), Icon::branch, &Palette::orange, *name, &tunnel));
        }
    }
    addUsers();
}

void ProxyDetailPanel::addUsers() {
    if (users_.empty()) {
        return;
    }
    const QString title = usedByTitle(users_.size());
    auto& section = addSection(title);
    section.addRow(new EntryListView(theme(), title, theme().monospaced(12), users_, &section));
}

} // namespace fernwick
