// The panel that holds the popover: without a frame, above other windows, and gone as soon as it loses the
// keyboard, at Escape, or when an entry of its footer is chosen. Threads: main thread only.
#pragma once

#include "screens/menubar/MenuBarPopover.h"

#include <QRect>
#include <QWidget>

#include <functional>

namespace fernwick {

class MenuBarExtraWindow final : public QWidget {
Q_OBJECT // its name as a class is what tells it from the main window

    public :
    // Both outlive the window.
    MenuBarExtraWindow(MenuBarCommands& commands, TunnelTally& tally);

    // Shows it beside an icon, in the screen's coordinates, and gives it the keyboard.
    void openBeside(const QRect& icon);

    // Takes it from the screen.
    void dismiss();

    // Called when it goes because it lost the keyboard.
    std::function<void()> onFocusLost;

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void place();

    const Theme& theme_;
    MenuBarPopover* popover_;
    QRect icon_; // that it stands beside
    bool dismissing_ = false;
};

} // namespace fernwick
