#include "screens/routing/ProxiesListView.h"

#include "screens/routing/ProxyDetailPanel.h"
#include "screens/routing/ProxyEditView.h"
#include "screens/routing/RoutingTexts.h"

#include <utility>

namespace fernwick {

ProxiesListView::ProxiesListView(const RoutingContext& context, const TunnelNames& tunnels, QWidget* parent)
    : RecordTab(context, tunnels, parent), model_(new ProxyListModel(this)), panel_(nullptr) {
    setObjectName(QStringLiteral("proxiesTab"));
    const ListColumnTexts texts{.name = QStringLiteral("Proxies"),
                                .placeholder = QStringLiteral("Search proxies..."),
                                .addHelp = QStringLiteral("Add proxy"),
                                .removeHelp = QStringLiteral("Remove selected proxy")};
    buildList(texts, {Icon::network, QStringLiteral("No Proxies"), QStringLiteral("Click + to add a proxy")},
              *model_, *new ProxyRowDelegate(context.theme, *model_, this));
    panel_ = new ProxyDetailPanel(context, tunnels, [this](const ProxyConfig& proxy) { edit(proxy); }, this);
    addPanel(*panel_);
    subscriptions_.push_back(context_.store.proxiesChanged.connect([this] { refresh(); }));
    subscriptions_.push_back(context_.store.rulesChanged.connect([this] { refreshPanel(); }));
    refresh();
}

std::size_t ProxiesListView::fillRows(std::string_view searchText) {
    const auto& proxies = context_.store.proxies();
    std::vector<ProxyRow> rows;
    for (const ProxyConfig* proxy : filteredProxies(proxies, searchText)) {
        rows.emplace_back(*proxy, tunnels_);
    }
    model_->setRows(std::move(rows));
    return proxies.size();
}

QString ProxiesListView::countText() const {
    return proxyCountText(context_.store.proxies().size());
}

bool ProxiesListView::showPanel(const std::optional<support::Uuid>& id) {
    return panel_->show(id);
}

void ProxiesListView::editRecord(const support::Uuid& id) {
    if (const ProxyConfig* proxy = context_.store.proxy(id)) {
        edit(*proxy);
    }
}

void ProxiesListView::edit(std::optional<ProxyConfig> proxy) {
    if (raiseOpenSheet()) {
        return;
    }
    auto* sheet = new ProxyEditView(context_.theme, context_.store, tunnels_, std::move(proxy), window());
    sheet->open();
}

void ProxiesListView::removeRecord(const support::Uuid& id) {
    context_.store.deleteProxy(id);
}

void ProxiesListView::moveRecord(std::size_t from, std::size_t before) {
    context_.store.moveProxies({from}, before);
}

} // namespace fernwick
