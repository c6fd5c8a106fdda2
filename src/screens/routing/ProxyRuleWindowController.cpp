#include "screens/routing/ProxyRuleWindowController.h"

#include "screens/WindowPlacement.h"

#include <utility>

namespace fernwick {

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
    centreOnScreen(*window_);
    bringToFront(*window_);
}

void ProxyRuleWindowController::windowWillClose() {
    if (auto* closing = window_.release()) {
        closing->deleteLater(); // it is in the middle of closing
    }
}

} // namespace fernwick
