// What the updater shows to the person. The screens implement it; texts reach them as they are to be shown,
// plain, whatever a server wrote into them. Threads: main thread. No call waits for an answer.
#pragma once

#include <functional>
#include <string>

namespace fernwick {

// The question whether a found version is to be installed.
struct UpdatePrompt {
    std::string message;         // the title line
    std::string informativeText; // the version, its notes and the question
    std::string acceptButton;
    std::string laterButton;
};

// The notice that stays up while the archive comes.
struct UpdateProgress {
    std::string message;
    std::string informativeText;
    std::string button; // of the only button, which is disabled
};

class UpdateScreens {
public:
    virtual ~UpdateScreens() = default;

    // An alert of critical style, modal for the application.
    virtual void showError(const std::string& title, const std::string& message) = 0;

    // An alert of informational style, modal for the application.
    virtual void showInfo(const std::string& title, const std::string& message) = 0;

    // Asks, above all other windows and modal for the application. `answered` is called once, later: true for
    // the accept button, false for anything else.
    virtual void ask(const UpdatePrompt& prompt, std::function<void(bool accepted)> answered) = 0;

    // A sheet with an indeterminate bar on the window that has the keyboard; without such a window it is modal
    // for the application, and nothing takes it down again.
    virtual void showProgress(const UpdateProgress& progress) = 0;

    // Closes the sheet of each window, whatever it may be.
    virtual void closeSheets() = 0;
};

} // namespace fernwick
