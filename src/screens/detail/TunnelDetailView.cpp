#include "screens/detail/TunnelDetailView.h"

#include "screens/detail/LogsTabView.h"
#include "screens/detail/TunnelStatusBar.h"
#include "screens/theme/Grid.h"
#include "screens/theme/Parts.h"

#include <QVBoxLayout>

namespace fernwick {

namespace {

QWidget* carded(const Theme& theme, QWidget& content, QWidget* parent) {
    auto* card = new Card(theme, parent);
    auto* layout = new QVBoxLayout(card);
    layout->setContentsMargins(1, 1, 1, 1);
    layout->addWidget(&content);
    return card;
}

} // namespace

TunnelDetailView::TunnelDetailView(const MainWindowContext& context, QWidget* parent)
    : QWidget(parent),
      statusBar_(new TunnelStatusBar(context.theme, context.tunnels, context.store, this)),
      logs_(new LogsTabView(context.theme, context.tunnels, context.dispatch, this)) {
    setObjectName(QStringLiteral("tunnelDetail"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(grid::kLarge, grid::kLarge, grid::kLarge, grid::kLarge);
    layout->setSpacing(grid::kMedium);
    layout->addWidget(carded(context.theme, *statusBar_, this));
    layout->addWidget(carded(context.theme, *logs_, this), 1);
}

void TunnelDetailView::setTunnel(const Tunnel& tunnel) {
    statusBar_->setTunnel(tunnel);
    logs_->setTunnel(tunnel.id);
}

void TunnelDetailView::refreshStatus() {
    statusBar_->refreshStatus();
}

} // namespace fernwick
