// The main window: its content and its menus. Whether a close is granted is decided by the application's shell.
// Threads: main thread only.
#pragma once

#include "screens/main/MainWindowContext.h"

#include <QMainWindow>

#include <functional>

namespace fernwick {

class ContentView;

class MainWindow final : public QMainWindow {
public:
    static constexpr int kMinimumWidth = 900;
    static constexpr int kMinimumHeight = 600;

    explicit MainWindow(const MainWindowContext& context);

    [[nodiscard]] ContentView& content() { return *content_; }

    // Asked before the window closes; false keeps it from closing (the one who answers may hide it instead).
    // Without it, the window closes.
    std::function<bool()> shouldClose;

    // Called by the command that ends the application.
    std::function<void()> onQuit;

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void buildMenus(const MainWindowContext& context);

    ContentView* content_;
};

} // namespace fernwick
