#include "shell/WindowManager.h"

#include "shell/WindowTraits.h"

#include <QApplication>

namespace fernwick {

WindowManager::WindowManager(platform::Dispatch& dispatch, AppDelegate& delegate)
    : dispatch_(dispatch), delegate_(delegate), self_(*this) {}

void WindowManager::openMainWindow() {
    dispatch_.main([weak = self_.weak()] {
        if (auto* manager = weak.get()) {
            manager->openNow();
        }
    });
}

void WindowManager::openNow() {
    if (auto* window = delegate_.mainWindow()) {
        makeKeyAndOrderFront(*window);
        return;
    }
    if (openWindowAction_) {
        openWindowAction_();
        return;
    }
    for (auto* window : QApplication::topLevelWidgets()) {
        if (canStandIn(traitsOf(*window))) {
            makeKeyAndOrderFront(*window);
            return;
        }
    }
}

} // namespace fernwick
