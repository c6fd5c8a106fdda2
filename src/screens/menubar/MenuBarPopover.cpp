#include "screens/menubar/MenuBarPopover.h"

#include "screens/menubar/MenuBarFooterButton.h"
#include "screens/menubar/PopoverActionButton.h"
#include "screens/menubar/PopoverTunnelList.h"
#include "screens/menubar/PopoverTunnelModel.h"
#include "screens/theme/Parts.h"

#include <algorithm>
#include <utility>

namespace fernwick {

namespace {

constexpr int kHorizontalPadding = 14;
constexpr int kTopPadding = 12;
constexpr int kHeaderSpacing = 2;
constexpr int kActionPadding = 8;
constexpr int kActionSpacing = 8;
constexpr int kEmptyPadding = 24;
constexpr int kEmptySpacing = 8;
constexpr int kEmptyIconSize = 28;
constexpr int kFooterPadding = 4;
constexpr int kQuitPadding = 2; // above and below the line over the last entry

} // namespace

MenuBarPopover::MenuBarPopover(MenuBarCommands& commands, TunnelTally& tally, QWidget* parent)
    : QWidget(parent),
      commands_(commands),
      tally_(tally),
      rows_(new PopoverTunnelModel(commands.context().store, commands.context().tunnels, this)),
      refreshSoon_(commands.context().dispatch, [this] { refresh(); }),
      refreshStatusesSoon_(commands.context().dispatch,
                           [this] { rows_->refreshStatuses(std::exchange(changedStatuses_, {})); }) {
    setObjectName(QStringLiteral("menuBarPopover"));
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    addHeader(*column);
    addActions(*column);
    column->addWidget(new Divider(commands.context().theme, this));
    addTunnels(*column);
    column->addWidget(new Divider(commands.context().theme, this));
    addFooter(*column);
    setFixedWidth(std::max(kWidth, column->minimumSize().width()));
}

void MenuBarPopover::addHeader(QVBoxLayout& column) {
    const Theme& theme = commands_.context().theme;
    auto* lines = new QVBoxLayout;
    lines->setContentsMargins(kHorizontalPadding, kTopPadding, kHorizontalPadding, kActionPadding);
    lines->setSpacing(kHeaderSpacing);
    summary_ = makeLabel(QString(), theme.font(13, QFont::DemiBold), this);
    summary_->setObjectName(QStringLiteral("popoverSummary"));
    lines->addWidget(summary_);
    auto* signature = makeCaption(QStringLiteral("Fernwick  \u00B7  by Orla Venn"), theme.font(11), this);
    signature->setObjectName(QStringLiteral("popoverSignature"));
    lines->addWidget(signature);
    column.addLayout(lines);
}

void MenuBarPopover::addActions(QVBoxLayout& column) {
    const Theme& theme = commands_.context().theme;
    auto* line = new QHBoxLayout;
    line->setContentsMargins(kHorizontalPadding, 0, kHorizontalPadding, kActionPadding);
    line->setSpacing(kActionSpacing);
    auto* start = new PopoverActionButton(theme, QStringLiteral("Connect All"), &Palette::green, true, this);
    start->setObjectName(QStringLiteral("connectAllButton"));
    connect(start, &QAbstractButton::clicked, this, [this] { commands_.connectAll(); });
    line->addWidget(start);
    auto* stop = new PopoverActionButton(theme, QStringLiteral("Disconnect All"), &Palette::red, false, this);
    stop->setObjectName(QStringLiteral("disconnectAllButton"));
    connect(stop, &QAbstractButton::clicked, this, [this] { commands_.disconnectAll(); });
    line->addWidget(stop);
    column.addLayout(line);
}

void MenuBarPopover::addTunnels(QVBoxLayout& column) {
    const Theme& theme = commands_.context().theme;
    empty_ = new QWidget(this);
    empty_->setObjectName(QStringLiteral("popoverEmpty"));
    auto* stack = new QVBoxLayout(empty_);
    stack->setContentsMargins(kHorizontalPadding, kEmptyPadding, kHorizontalPadding, kEmptyPadding);
    stack->setSpacing(kEmptySpacing);
    stack->addWidget(new IconView(theme, Icon::networkOff, kEmptyIconSize, &Palette::secondary, empty_), 0,
                     Qt::AlignHCenter);
    stack->addWidget(makeCaption(QStringLiteral("No tunnels configured"), theme.font(12), empty_), 0,
                     Qt::AlignHCenter);
    column.addWidget(empty_);
    list_ = new PopoverTunnelList(theme, *rows_, this);
    list_->onToggle = [this](const support::Uuid& id) { commands_.toggle(id); };
    column.addWidget(list_);
}

void MenuBarPopover::addFooter(QVBoxLayout& column) {
    const Theme& theme = commands_.context().theme;
    auto* footer = new QVBoxLayout;
    footer->setContentsMargins(0, kFooterPadding, 0, kFooterPadding);
    footer->setSpacing(0);
    bool first = true;
    for (const auto& entry : commands_.entries()) {
        if (entry.isDestructive && !first) {
            footer->addSpacing(kQuitPadding);
            footer->addWidget(new Divider(theme, this));
            footer->addSpacing(kQuitPadding);
        }
        first = false;
        auto* button = new MenuBarFooterButton(theme, entry.icon, entry.label, entry.isDestructive, this);
        button->setObjectName(entry.objectName);
        connect(button, &QAbstractButton::clicked, this, [this, action = entry.action] {
            if (onEntryChosen) {
                onEntryChosen();
            }
            action();
        });
        footer->addWidget(button);
    }
    column.addLayout(footer);
}

void MenuBarPopover::refresh() {
    tally_.flush();
    refreshSummary();
    rows_->reload();
    refreshTunnels();
}

void MenuBarPopover::refreshSummary() {
    summary_->setText(QString::fromStdString(tally_.summaryText()));
}

void MenuBarPopover::refreshTunnels() {
    const bool any = rows_->rowCount() > 0;
    empty_->setVisible(!any);
    list_->setVisible(any);
    list_->setFixedHeight(list_->wantedHeight());
    layout()->activate();
    if (const int excess = sizeHint().height() - heightLimit_; any && heightLimit_ > 0 && excess > 0) {
        list_->setFixedHeight(std::max(list_->height() - excess, 0));
        layout()->activate();
    }
}

void MenuBarPopover::setHeightLimit(int limit) {
    heightLimit_ = limit;
    refreshTunnels();
}

void MenuBarPopover::focusAfresh() {
    list_->reset();
    list_->setFocus(Qt::PopupFocusReason);
}

void MenuBarPopover::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    const MenuBarContext& context = commands_.context();
    subscriptions_.clear();
    subscriptions_.push_back(context.store.changed.connect([this] { refreshSoon_.request(); }));
    subscriptions_.push_back(tally_.changed.connect([this] { refreshSummary(); }));
    subscriptions_.push_back(context.tunnels.statusChanged.connect([this](const support::Uuid& id) {
        changedStatuses_.insert(id);
        refreshStatusesSoon_.request();
    }));
}

void MenuBarPopover::hideEvent(QHideEvent* event) {
    subscriptions_.clear();
    QWidget::hideEvent(event);
}

} // namespace fernwick
