// Where a window of its own comes up. Threads: main thread only.
#pragma once

#include <QScreen>
#include <QWidget>

namespace fernwick {

// Shows the window, brings it back if it is minimised, and gives it the keyboard.
inline void bringToFront(QWidget& window) {
    window.setWindowState(window.windowState() & ~Qt::WindowMinimized);
    window.show();
    window.raise();
    window.activateWindow();
}

// Puts the window in the middle of what its screen leaves free.
inline void centreOnScreen(QWidget& window) {
    const QRect area = window.screen()->availableGeometry();
    window.move(area.center() - QRect(QPoint(0, 0), window.size()).center());
}

} // namespace fernwick
