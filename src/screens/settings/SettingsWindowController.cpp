#include "screens/settings/SettingsWindowController.h"

#include "screens/WindowPlacement.h"

#include <utility>

namespace fernwick {

SettingsWindowController::SettingsWindowController(SettingsContext context) : context_(std::move(context)) {}

SettingsWindowController::~SettingsWindowController() = default;

void SettingsWindowController::show() {
    if (window_ && window_->isVisible()) {
        bringToFront(*window_);
        return;
    }
    window_ = std::make_unique<SettingsWindow>(context_);
    window_->onClose = [this] { windowWillClose(); };
    centreOnScreen(*window_);
    bringToFront(*window_);
}

void SettingsWindowController::showUpdateOutcome(const std::string& text) {
    if (window_) {
        window_->view().showUpdateOutcome(text);
    }
}

void SettingsWindowController::windowWillClose() {
    if (auto* closing = window_.release()) {
        closing->deleteLater(); // it is in the middle of closing
    }
}

} // namespace fernwick
