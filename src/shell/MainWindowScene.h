// The main window as a scene: opened at start and whenever it is asked for and gone.
// Threads: main thread only.
#pragma once

#include "screens/main/MainWindow.h"
#include "shell/AppDelegate.h"
#include "shell/WindowManager.h"
#include "tunnel/RoutingLayer.h"

#include <QObject>

#include <memory>

namespace fernwick {

class MainWindowScene final : public QObject {
public:
    // All references, those in the context included, outlive the scene.
    MainWindowScene(MainWindowContext context, RoutingLayer& routing, AppDelegate& delegate,
                    WindowManager& windows);
    ~MainWindowScene() override;

    // Shows the window, making it first if there is none.
    void open();

    // All of open() but the window: the routing layer comes to life, and the window can be asked for.
    void stayHidden();

    [[nodiscard]] bool isVisible() const { return window_ && window_->isVisible(); }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void appeared();

    MainWindowContext context_;
    RoutingLayer& routing_;
    AppDelegate& delegate_;
    WindowManager& windows_;
    std::unique_ptr<MainWindow> window_;
    support::WeakSource<MainWindowScene> self_;
};

} // namespace fernwick
