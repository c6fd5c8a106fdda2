#include "screens/main/SidebarView.h"

#include "screens/main/EmptyListView.h"
#include "screens/main/SearchRow.h"
#include "screens/main/StatBadge.h"
#include "screens/main/TagStrip.h"
#include "screens/main/TunnelListView.h"
#include "screens/main/TunnelRowDelegate.h"
#include "screens/theme/Grid.h"
#include "screens/theme/Parts.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QMenu>
#include <QPainter>
#include <QStackedWidget>
#include <QToolButton>
#include <QVBoxLayout>

namespace fernwick {

SidebarView::SidebarView(const MainWindowContext& context, SidebarCallbacks callbacks, QWidget* parent)
    : QWidget(parent),
      context_(context),
      callbacks_(std::move(callbacks)),
      model_(new TunnelListModel(context.tunnels, context.tags, this)) {
    setObjectName(QStringLiteral("sidebar"));
    setMinimumWidth(kMinimumWidth);
    setMaximumWidth(kMaximumWidth);
    auto* toolbar = buildToolbar();
    search_ = new SearchRow(
        context.theme, QStringLiteral("Search tunnels..."), QStringLiteral("sidebarSearchField"),
        [this](const QString& text) { callbacks_.onSearch(text.toStdString()); }, this);
    strip_ = new TagStrip(
        context.theme, [this](std::optional<TunnelTag> tag) { callbacks_.onTag(std::move(tag)); },
        search_->lastControl(), this);
    stripDivider_ = new Divider(context.theme, this);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(toolbar);
    layout->addWidget(buildStatistics());
    layout->addWidget(new Divider(context.theme, this));
    layout->addWidget(search_);
    layout->addWidget(new Divider(context.theme, this));
    layout->addWidget(strip_);
    layout->addWidget(stripDivider_);
    pages_ = new QStackedWidget(this);
    pages_->setFocusPolicy(Qt::ClickFocus);
    pages_->addWidget(buildList());
    empty_ = new EmptyListView(context.theme, pages_);
    pages_->addWidget(empty_);
    layout->addWidget(pages_, 1);
}

QWidget* SidebarView::buildToolbar() {
    auto* bar = new QWidget(this);
    bar->setFixedHeight(grid::kHeaderHeight);
    auto* rules = makeIconButton(context_.theme, Icon::shieldNetwork, QStringLiteral("Proxies & Rules"),
                                 QStringLiteral("proxiesAndRulesButton"), bar);
    auto* add = makeIconButton(context_.theme, Icon::plus, QStringLiteral("Add new tunnel"),
                               QStringLiteral("addTunnelButton"), bar);
    connect(add, &QToolButton::clicked, this, [this] { callbacks_.onAdd(); });
    connect(rules, &QToolButton::clicked, this, [this] { callbacks_.onProxyRules(); });
    auto* layout = new QHBoxLayout(bar);
    layout->setContentsMargins(grid::kLarge, 0, grid::kSmall + 2, 0);
    layout->setSpacing(grid::kTight);
    layout->addWidget(makeLabel(QStringLiteral("Fernwick"), context_.theme.font(15, QFont::DemiBold), bar));
    layout->addStretch();
    layout->addWidget(rules);
    layout->addWidget(add);
    return bar;
}

QWidget* SidebarView::buildStatistics() {
    auto* row = new QWidget(this);
    total_ = new StatBadge(context_.theme, QStringLiteral("Total"), &Palette::secondary, row);
    total_->setObjectName(QStringLiteral("totalBadge"));
    active_ = new StatBadge(context_.theme, QStringLiteral("Active"), &Palette::green, row);
    active_->setObjectName(QStringLiteral("activeBadge"));
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(grid::kMedium, 0, grid::kMedium, grid::kMedium);
    layout->addWidget(total_, 1);
    layout->addWidget(active_, 1);
    return row;
}

QWidget* SidebarView::buildList() {
    list_ = new TunnelListView(context_.theme, this);
    list_->setObjectName(QStringLiteral("tunnelList"));
    list_->setAccessibleName(QStringLiteral("Tunnels"));
    list_->setModel(model_);
    list_->setItemDelegate(new TunnelRowDelegate(context_.theme, *model_, list_));
    list_->onMenu = [this](int row, QPoint where) { openMenu(row, where); };
    list_->onDelete = [this](const std::vector<int>& rows) {
        for (const int row : rows) {
            callbacks_.onDelete(Tunnel(model_->tunnel(row)));
        }
    };
    connect(list_->selectionModel(), &QItemSelectionModel::selectionChanged, this, [this] { tellSelection(); });
    return list_;
}

void SidebarView::tellSelection() {
    if (showing_) {
        return;
    }
    const auto chosen = list_->selectionModel()->selectedIndexes();
    callbacks_.onSelect(chosen.isEmpty() ? std::nullopt
                                         : std::optional(model_->tunnel(chosen.first().row()).id));
}

void SidebarView::show(const TunnelSelection& filteredTunnels, const TunnelStatistics& statistics,
                       const ContentState& state) {
    search_->setText(QString::fromStdString(state.searchText));
    const auto& tags = context_.tags.tags();
    strip_->setTags(tags, state.selectedTag);
    strip_->setVisible(!tags.empty());
    stripDivider_->setVisible(!tags.empty());
    empty_->setSearching(!state.searchText.empty());
    pages_->setCurrentIndex(filteredTunnels.empty() ? 1 : 0);
    showing_ = true;
    model_->setTunnels(filteredTunnels);
    showSelection(state.selectedTunnelID);
    showing_ = false;
    showStatuses({}, statistics);
}

void SidebarView::showSelection(const std::optional<support::Uuid>& selected) {
    auto* selection = list_->selectionModel();
    const int row = selected ? model_->rowOf(*selected) : -1;
    const QModelIndex wanted = model_->index(row);
    if (wanted.isValid() ? selection->isSelected(wanted) : !selection->hasSelection()) {
        return;
    }
    selection->setCurrentIndex(wanted, wanted.isValid() ? QItemSelectionModel::ClearAndSelect
                                                        : QItemSelectionModel::Clear);
    if (wanted.isValid()) {
        list_->scrollTo(wanted);
    }
}

void SidebarView::showStatuses(const std::unordered_set<support::Uuid>& ids,
                               const TunnelStatistics& statistics) {
    model_->refreshStatuses(ids);
    total_->setValue(statistics.total);
    active_->setValue(statistics.active);
}

void SidebarView::showTags() {
    model_->refreshTags();
}

void SidebarView::focusSearch() {
    search_->focusField();
}

void SidebarView::focusList() {
    if (pages_->currentWidget() == list_) {
        list_->setFocus();
    } else {
        pages_->setFocus(); // where nothing shows it, so that no button stands out in an empty window
    }
}

void SidebarView::openMenu(int row, QPoint where) {
    const Tunnel tunnel = model_->tunnel(row);
    auto* menu = new QMenu(this);
    menu->setObjectName(QStringLiteral("tunnelMenu"));
    menu->setAttribute(Qt::WA_DeleteOnClose);
    const bool active = context_.tunnels.isActive(tunnel.id);
    menu->addAction(active ? QStringLiteral("Stop Tunnel") : QStringLiteral("Start Tunnel"), this,
                    [this, tunnel] {
                        if (context_.tunnels.isActive(tunnel.id)) {
                            context_.tunnels.disconnect(tunnel.id);
                        } else {
                            context_.tunnels.connect(tunnel, context_.store);
                        }
                    });
    menu->addSeparator();
    menu->addAction(QStringLiteral("Duplicate"), this,
                    [this, tunnel] { context_.store.add(duplicateOf(tunnel)); });
    menu->addSeparator();
    menu->addAction(QStringLiteral("Delete"), this, [this, tunnel] { callbacks_.onDelete(tunnel); });
    menu->popup(where);
}

void SidebarView::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.fillRect(rect(), context_.theme.colors().sidebar);
}

void SidebarView::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange && strip_ != nullptr) {
        strip_->rebuild();
    }
}

} // namespace fernwick
