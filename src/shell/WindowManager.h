// Brings the main window up from anywhere in the application.
// Threads: openMainWindow from any thread; everything else on the main thread.
#pragma once

#include "platform/Dispatch.h"
#include "shell/AppDelegate.h"
#include "support/Weak.h"

#include <functional>

namespace fernwick {

class WindowManager {
public:
    // Both references outlive the manager.
    WindowManager(platform::Dispatch& dispatch, AppDelegate& delegate);
    WindowManager(const WindowManager&) = delete;
    WindowManager& operator=(const WindowManager&) = delete;

    // How a main window is opened anew; replaces any action held before.
    void setOpenWindowAction(std::function<void()> action) { openWindowAction_ = std::move(action); }

    // On the main queue: raises the adopted main window; without one opens it anew; without a way to do that
    // raises the first other window that may stand in. Does nothing when there is none.
    void openMainWindow();

private:
    void openNow();

    platform::Dispatch& dispatch_;
    AppDelegate& delegate_;
    std::function<void()> openWindowAction_;
    support::WeakSource<WindowManager> self_;
};

} // namespace fernwick
