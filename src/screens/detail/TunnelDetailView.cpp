#include "screens/detail/TunnelDetailView.h"

#include "screens/detail/AdvancedTabView.h"
#include "screens/detail/ConfigTabView.h"
#include "screens/detail/LogsTabView.h"
#include "screens/detail/TabButton.h"
#include "screens/detail/TunnelStatusBar.h"
#include "screens/theme/Grid.h"

#include <QSignalBlocker>
#include <QStackedWidget>

#include <algorithm>

namespace fernwick {

namespace {

// A page of its own in a card, inside the margins of the view.
QWidget* carded(const Theme& theme, QWidget* content, QWidget* parent, int bottom) {
    auto* frame = new QWidget(parent);
    auto* margins = new QVBoxLayout(frame);
    margins->setContentsMargins(grid::kLarge, 0, grid::kLarge, bottom);
    auto* card = new Card(theme, frame);
    margins->addWidget(card);
    auto* layout = new QVBoxLayout(card);
    layout->setContentsMargins(1, 1, 1, 1);
    layout->addWidget(content);
    return frame;
}

} // namespace

TunnelDetailView::TunnelDetailView(const MainWindowContext& context, QWidget* parent)
    : QWidget(parent),
      context_(context),
      binding_(context.store),
      statusBar_(new TunnelStatusBar(context.theme, context.tunnels, context.store, context.clock, this)),
      pages_(new QStackedWidget(this)),
      refreshBadgeSoon_(context.dispatch, [this] { refreshBadge(); }) {
    setObjectName(QStringLiteral("tunnelDetail"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, grid::kLarge, 0, 0);
    layout->setSpacing(grid::kMedium);
    layout->addWidget(carded(context.theme, statusBar_, this, 0));
    layout->addWidget(buildTabBar());
    layout->addWidget(pages_, 1);
    bindingChanged_ = binding_.changed.connect([this] { refresh(); });
    logChanged_ = context.tunnels.logs().changed.connect([this](const support::Uuid& id) {
        if (id == binding_.value().id) {
            refreshBadgeSoon_.request();
        }
    });
}

QWidget* TunnelDetailView::buildTabBar() {
    auto* bar = new QWidget(this);
    bar->setObjectName(QStringLiteral("detailTabs"));
    auto* layout = new QHBoxLayout(bar);
    layout->setContentsMargins(grid::kLarge, 0, grid::kLarge, 0);
    layout->setSpacing(grid::kTight);
    layout->addStretch();
    const auto add = [&](int tab, const QString& title, Icon icon, const QString& name) {
        auto* button =
            new TabButton(context_.theme, title, icon, tab, [this](int chosen) { select(chosen); }, bar);
        button->setObjectName(name);
        layout->addWidget(button);
        tabs_.at(static_cast<std::size_t>(tab)) = button;
    };
    add(kConfiguration, QStringLiteral("Configuration"), Icon::sliders,
        QStringLiteral("configurationTabButton"));
    add(kAdvanced, QStringLiteral("Advanced"), Icon::gear, QStringLiteral("advancedTabButton"));
    add(kLogs, QStringLiteral("Logs"), Icon::terminal, QStringLiteral("logsTabButton"));
    layout->addStretch();
    const QSignalBlocker quiet(tabs_.front()); // its page is made once there is a tunnel
    tabs_.front()->setChecked(true);
    return bar;
}

void TunnelDetailView::setTunnel(const Tunnel& tunnel) {
    binding_.setTunnel(tunnel);
    if (pages_->count() == 0) {
        refresh();
    }
    refreshBadge();
    statusBar_->refreshStatus();
}

void TunnelDetailView::refreshStatus() {
    statusBar_->refreshStatus();
}

void TunnelDetailView::select(int tab) {
    selectedTab_ = tab;
    // Brought up to date before it is seen.
    QWidget* const opened = refreshPage();
    if (tab == kLogs) {
        logs_->followLines();
    }
    pages_->setCurrentWidget(opened);
    statusBar_->refreshStatus();
}

void TunnelDetailView::refresh() {
    statusBar_->setTunnel(binding_.value());
    pages_->setCurrentWidget(refreshPage());
}

QWidget* TunnelDetailView::refreshPage() {
    switch (selectedTab_) {
    case kAdvanced:
        if (advanced_ == nullptr) {
            advanced_ = new AdvancedTabView(context_, binding_, pages_);
            pages_->addWidget(advanced_);
        }
        advanced_->refresh();
        return advanced_;
    case kLogs:
        if (logs_ == nullptr) {
            logs_ = new LogsTabView(context_.theme, context_.tunnels, context_.dispatch, pages_);
            pages_->addWidget(carded(context_.theme, logs_, pages_, grid::kLarge));
        }
        logs_->setTunnel(binding_.value().id);
        return logs_->parentWidget()->parentWidget();
    default:
        if (config_ == nullptr) {
            config_ = new ConfigTabView(context_, binding_, pages_);
            pages_->addWidget(config_);
        }
        config_->refresh();
        return config_;
    }
}

void TunnelDetailView::refreshBadge() {
    const auto& lines = context_.tunnels.logs().lines(binding_.value().id);
    tabs_.at(kLogs)->setBadge(static_cast<int>(std::ranges::count(lines, LogLevel::error, &LogEntry::level)));
}

} // namespace fernwick
