// What the application does at the moments of its life: start, reopen, close of the main window, end.
// Threads: main thread only.
#pragma once

#include "platform/Dispatch.h"
#include "support/Weak.h"
#include "tunnel/RoutingLayer.h"

#include <QObject>
#include <QPointer>
#include <QWidget>

#include <functional>

namespace fernwick {

class AppDelegate final : public QObject {
public:
    // How long after the start a main window is looked for, and a new version is asked for.
    static constexpr platform::Duration kAdoptionDelay{100};
    static constexpr platform::Duration kUpdateCheckDelay{1000};

    // How long the end of the application waits for the routing layer.
    static constexpr platform::Duration kShutdownLimit{2000};

    // Both references outlive the delegate.
    AppDelegate(platform::Dispatch& dispatch, RoutingLayer& routing);

    // What is to be done, silently, once the application has settled; nothing unless it is set before the
    // start.
    void setUpdateCheck(std::function<void()> checkForUpdates) {
        checkForUpdates_ = std::move(checkForUpdates);
    }

    // Plans the delayed steps of the start: adoption, and the update check if there is one.
    void applicationDidFinishLaunching();

    // Takes every window off the screen, then stops the routing layer in the background and waits for that, but
    // not longer than the limit; what takes longer is cut off without a word.
    void applicationWillTerminate();

    // Hides the window; answers false, since the main window is never closed.
    bool windowShouldClose(QWidget& window);

    // Shows the main window; answers true, whether or not a window is visible already.
    bool applicationShouldHandleReopen(bool hasVisibleWindows);

    // False: the application lives on without a window.
    [[nodiscard]] bool applicationShouldTerminateAfterLastWindowClosed() const { return false; }

    // The adopted main window; empty until one was adopted and after it was destroyed.
    [[nodiscard]] QWidget* mainWindow() const { return mainWindow_; }
    void setMainWindow(QWidget& window) { mainWindow_ = &window; }

    // Adopts the first window that qualifies, and becomes the one who answers its close. Without one, nothing
    // changes.
    void findMainWindow();

    // Brings the main window up, adopting one first if needed.
    void showMainWindow();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    platform::Dispatch& dispatch_;
    RoutingLayer& routing_;
    std::function<void()> checkForUpdates_;
    QPointer<QWidget> mainWindow_;
    QPointer<QWidget> answered_; // the window whose close is answered here
    support::WeakSource<AppDelegate> self_;
};

// Shows the window, undoing a minimisation, and gives it the keyboard.
void makeKeyAndOrderFront(QWidget& window);

} // namespace fernwick
