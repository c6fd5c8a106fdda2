// What the shell asks about a top-level window before it takes it for the main one. Two rules use it, and they
// differ on purpose: adoption at start-up, and the last resort when the main window is asked for and none was
// adopted.
#pragma once

#include <string>
#include <string_view>

class QWidget;

namespace fernwick {

struct WindowTraits {
    bool canBecomeMain = false; // an ordinary window, not a dialog, panel, menu or tip
    bool canBecomeKey = false;  // takes the keyboard
    bool isPanel = false;       // an auxiliary window: dialog, tool window, popover
    std::string className;
    std::string title;
};

// The title of the settings window, which is never taken for the main one.
inline constexpr std::string_view kSettingsTitle = "Settings";

// Reads the traits of a top-level window.
[[nodiscard]] WindowTraits traitsOf(const QWidget& window);

// Whether start-up may adopt the window as the main one. A window without a title can be adopted.
[[nodiscard]] bool canBeAdopted(const WindowTraits& window);

// Whether the window may be raised in place of a main window that was never adopted. One without a title may
// not.
[[nodiscard]] bool canStandIn(const WindowTraits& window);

} // namespace fernwick
