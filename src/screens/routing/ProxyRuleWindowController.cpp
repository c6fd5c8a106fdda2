#include "screens/routing/ProxyRuleWindowController.h"

#include <QScreen>

#include <utility>

namespace fernwick {

namespace {

void bringToFront(QWidget& window) {
    window.setWindowState(window.windowState() & ~Qt::WindowMinimized);
    window.show();
    window.raise();
    window.activateWindow();
}

void centre(QWidget& window) {
    const QRect area = window.screen()->availableGeometry();
    window.move(area.center() - QRect(QPoint(0, 0), window.size()).center());
}

} // namespace

ProxyRuleWindowController::ProxyRuleWindowController(const RoutingContext& context,
                                                     OpenRuleEditor openRuleEditor)
    : context_(context), openRuleEditor_(std::move(openRuleEditor)) {}

ProxyRuleWindowController::~ProxyRuleWindowController() = default;

void ProxyRuleWindowController::show(TunnelNames tunnels) {
    if (window_ && window_->isVisible()) {
        bringToFront(*window_);
        return;
    }
    window_ = std::make_unique<ProxyRuleWindow>(context_, std::move(tunnels), openRuleEditor_);
    window_->onClose = [this] { windowWillClose(); };
    centre(*window_);
    bringToFront(*window_);
}

void ProxyRuleWindowController::windowWillClose() {
    if (auto* closing = window_.release()) {
        closing->deleteLater(); // it is in the middle of closing
    }
}

} // namespace fernwick
