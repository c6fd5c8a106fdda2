#include "shell/AppDelegate.h"

#include "shell/WindowTraits.h"

#include <QApplication>
#include <QCloseEvent>

#include <cstdlib>
#include <memory>
#include <semaphore>
#include <utility>

namespace fernwick {

void makeKeyAndOrderFront(QWidget& window) {
    window.setWindowState(window.windowState() & ~Qt::WindowMinimized);
    window.show();
    window.raise();
    window.activateWindow();
}

AppDelegate::AppDelegate(platform::Dispatch& dispatch, RoutingLayer& routing)
    : dispatch_(dispatch), routing_(routing), self_(*this) {
    qApp->installEventFilter(this);
}

void AppDelegate::applicationDidFinishLaunching() {
    dispatch_.mainAfter(kAdoptionDelay, [weak = self_.weak()] {
        if (auto* delegate = weak.get()) {
            delegate->findMainWindow();
        }
    });
    if (!checkForUpdates_) {
        return;
    }
    dispatch_.mainAfter(kUpdateCheckDelay, [weak = self_.weak()] {
        if (auto* delegate = weak.get()) {
            delegate->checkForUpdates_();
        }
    });
}

void AppDelegate::findMainWindow() {
    for (auto* window : QApplication::topLevelWidgets()) {
        if (canBeAdopted(traitsOf(*window))) {
            mainWindow_ = window;
            if (answered_ != nullptr) {
                answered_->removeEventFilter(this);
            }
            answered_ = window;
            window->installEventFilter(this);
            return;
        }
    }
}

void AppDelegate::showMainWindow() {
    if (mainWindow_ == nullptr) {
        findMainWindow();
    }
    if (mainWindow_ != nullptr) {
        makeKeyAndOrderFront(*mainWindow_);
    }
}

bool AppDelegate::windowShouldClose(QWidget& window) {
    window.hide();
    return false;
}

bool AppDelegate::applicationShouldHandleReopen(bool /*hasVisibleWindows*/) {
    showMainWindow();
    return true;
}

bool AppDelegate::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Quit && watched == qApp) {
        // The toolkit would ask every window first, and the main one refuses to close: beside another visible
        // window that is enough to call the end off.
        QCoreApplication::exit(EXIT_SUCCESS);
        return true;
    }
    if (event->type() == QEvent::Close && watched == answered_ && !windowShouldClose(*answered_)) {
        event->ignore();
        return true;
    }
    return QObject::eventFilter(watched, event);
}

void AppDelegate::applicationWillTerminate() {
    for (auto* window : QApplication::topLevelWidgets()) {
        window->hide();
    }
    QGuiApplication::sync();
    // Shared with the background work, which may go on after the wait was given up.
    const auto finished = std::make_shared<std::binary_semaphore>(0);
    dispatch_.global(platform::Priority::userInitiated, [&routing = routing_, finished] {
        routing.stopPacServer();
        routing.removeAllProxy("App terminated", true);
        routing.stopEngine();
        finished->release();
    });
    // Signalled or not, the application ends now.
    (void)finished->try_acquire_for(kShutdownLimit);
}

} // namespace fernwick
