// Keeps the one settings window: opens it, brings it to the front, forgets it when it is closed.
// Threads: main thread only.
#pragma once

#include "screens/settings/SettingsWindow.h"

#include <memory>

namespace fernwick {

class SettingsWindowController {
public:
    // All that the context refers to outlives the controller.
    explicit SettingsWindowController(SettingsContext context);
    SettingsWindowController(const SettingsWindowController&) = delete;
    SettingsWindowController& operator=(const SettingsWindowController&) = delete;
    ~SettingsWindowController();

    // Shows the window on its first tab. One that is open comes to the front as it is.
    void show();

    // Shows what came of asking for a newer version, several lines of plain text; empty text takes away what
    // was shown. Without a window nothing happens.
    void showUpdateOutcome(const std::string& text);

    // The window while it is open, or null.
    [[nodiscard]] SettingsWindow* window() const { return window_.get(); }

private:
    void windowWillClose();

    SettingsContext context_;
    std::unique_ptr<SettingsWindow> window_;
};

} // namespace fernwick
