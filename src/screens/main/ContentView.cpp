#include "screens/main/ContentView.h"

#include "screens/detail/DetailHeader.h"
#include "screens/detail/TunnelDetailView.h"
#include "screens/main/AddTunnelSheet.h"
#include "screens/main/DeleteConfirmation.h"
#include "screens/main/EmptyDetailView.h"
#include "screens/main/SidebarView.h"
#include "screens/main/TunnelRules.h"
#include "screens/theme/Parts.h"

#include <QSplitter>
#include <QStackedWidget>
#include <QVBoxLayout>

#include <utility>

namespace fernwick {

ContentView::ContentView(const MainWindowContext& context, QWidget* parent)
    : QWidget(parent),
      context_(context),
      refreshSoon_(context.dispatch, [this] { refresh(); }),
      refreshStatusesSoon_(context.dispatch, [this] { refreshStatuses(); }) {
    setObjectName(QStringLiteral("content"));
    build();
    observe();
    refresh();
    sidebar_->focusList();
}

void ContentView::build() {
    SidebarCallbacks callbacks;
    callbacks.onAdd = [this] { showAddSheet(); };
    callbacks.onDelete = [this](const Tunnel& tunnel) { confirmDelete(tunnel); };
    callbacks.onProxyRules = [this] { openProxyRules(); };
    callbacks.onSelect = [this](std::optional<support::Uuid> id) { select(id); };
    callbacks.onSearch = [this](std::string text) {
        state_.searchText = std::move(text);
        refresh();
    };
    callbacks.onTag = [this](std::optional<TunnelTag> tag) {
        state_.selectedTag = std::move(tag);
        refresh();
    };
    columns_ = new QSplitter(Qt::Horizontal, this);
    columns_->setObjectName(QStringLiteral("columns"));
    columns_->setChildrenCollapsible(false);
    columns_->setHandleWidth(1);
    sidebar_ = new SidebarView(context_, std::move(callbacks), columns_);
    columns_->addWidget(sidebar_);
    columns_->addWidget(buildDetail());
    columns_->setStretchFactor(0, 0);
    columns_->setStretchFactor(1, 1);
    columns_->setSizes({SidebarView::kIdealWidth, 2 * kDetailMinimumWidth});
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(columns_);
}

QWidget* ContentView::buildDetail() {
    auto* column = new QWidget(columns_);
    column->setMinimumSize(kDetailMinimumWidth, kDetailMinimumHeight);
    header_ = new DetailHeader(context_.theme, [this] { toggleSidebar(); }, column);
    pages_ = new QStackedWidget(column);
    pages_->addWidget(new EmptyDetailView(context_.theme, [this] { showAddSheet(); }, pages_));
    auto* layout = new QVBoxLayout(column);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(header_);
    layout->addWidget(new Divider(context_.theme, column));
    layout->addWidget(pages_, 1);
    return column;
}

void ContentView::observe() {
    subscriptions_.push_back(context_.store.changed.connect([this] { refreshSoon_.request(); }));
    subscriptions_.push_back(context_.tags.changed.connect([this] {
        sidebar_->showTags();
        refreshSoon_.request();
    }));
    subscriptions_.push_back(context_.tunnels.statusChanged.connect([this](const support::Uuid& id) {
        changedStatuses_.insert(id);
        refreshStatusesSoon_.request();
    }));
    subscriptions_.push_back(context_.notifications.observe(TunnelStore::kDidChangeNotification,
                                                            [this] { context_.store.reload(); }));
}

void ContentView::refresh() {
    const auto& tunnels = context_.store.tunnels();
    sidebar_->show(filteredTunnels(tunnels, state_.searchText, state_.selectedTag),
                   statisticsOf(tunnels, context_.tunnels), state_);
    const Tunnel* shown = state_.selectedTunnelID ? context_.store.find(*state_.selectedTunnelID) : nullptr;
    header_->setTunnel(shown);
    if (shown != nullptr) {
        showDetail(*shown);
    }
    pages_->setCurrentIndex(shown != nullptr ? 1 : 0);
}

// The page is made for the first tunnel that is chosen: the window opens on none, and opens sooner without it.
void ContentView::showDetail(const Tunnel& tunnel) {
    if (detail_ == nullptr) {
        detail_ = new TunnelDetailView(context_, pages_);
        pages_->addWidget(detail_);
    }
    detail_->setTunnel(tunnel);
}

void ContentView::refreshStatuses() {
    const auto changed = std::exchange(changedStatuses_, {});
    sidebar_->showStatuses(changed, statisticsOf(context_.store.tunnels(), context_.tunnels));
    if (detail_ != nullptr && state_.selectedTunnelID && changed.contains(*state_.selectedTunnelID)) {
        detail_->refreshStatus();
    }
}

void ContentView::select(std::optional<support::Uuid> id) {
    state_.selectedTunnelID = id;
    refresh();
}

void ContentView::toggleSidebar() {
    const bool hide = state_.columnVisibility == ColumnVisibility::all;
    state_.columnVisibility = hide ? ColumnVisibility::detailOnly : ColumnVisibility::all;
    sidebar_->setVisible(!hide);
}

void ContentView::focusSearch() {
    if (state_.columnVisibility == ColumnVisibility::detailOnly) {
        toggleSidebar();
    }
    sidebar_->focusSearch();
}

void ContentView::showAddSheet() {
    if (std::exchange(state_.showingAddSheet, true)) {
        return;
    }
    auto* sheet = new AddTunnelSheet(
        context_.theme, context_.store, context_.clock,
        [this](const Tunnel& added) {
            select(added.id);
            sidebar_->focusList();
        },
        window());
    sheet->setAttribute(Qt::WA_DeleteOnClose);
    connect(sheet, &QDialog::finished, this, [this] { state_.showingAddSheet = false; });
    sheet->open();
}

void ContentView::confirmDelete(const Tunnel& tunnel) {
    state_.tunnelToDelete = tunnel;
    if (std::exchange(state_.showingDeleteAlert, true)) {
        question_->setName(tunnel.name);
        return;
    }
    question_ = new DeleteConfirmation(context_.theme, tunnel.name, [this] { deleteConfirmed(); }, window());
    question_->setAttribute(Qt::WA_DeleteOnClose);
    connect(question_, &QDialog::finished, this, [this] {
        state_.showingDeleteAlert = false;
        state_.tunnelToDelete.reset();
    });
    question_->open();
}

void ContentView::deleteConfirmed() {
    if (!state_.tunnelToDelete) {
        return;
    }
    const support::Uuid id = state_.tunnelToDelete->id;
    context_.tunnels.disconnect(id);
    context_.store.remove(id);
    if (state_.selectedTunnelID == id) {
        select(std::nullopt);
    }
}

void ContentView::openProxyRules() const {
    if (!context_.showProxyRules) {
        return;
    }
    std::vector<std::pair<support::Uuid, std::string>> tunnels;
    for (const Tunnel& tunnel : context_.store.tunnels()) {
        tunnels.emplace_back(tunnel.id, tunnel.name);
    }
    context_.showProxyRules(std::move(tunnels));
}

} // namespace fernwick
