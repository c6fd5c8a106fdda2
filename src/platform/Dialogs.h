// The system's own panels.
// Threads: main thread. No panel holds up the event loop.
#pragma once

#include <functional>
#include <optional>
#include <string>

namespace fernwick::platform {

// A panel that asks for one existing file, no folder.
struct OpenFileRequest {
    std::string title;
    std::string message; // a line of advice above the files, where the panel has a place for it
    std::string folder;  // where it starts, an absolute path; hidden files are shown
};

class Dialogs {
public:
    virtual ~Dialogs() = default;

    // Opens the panel over the active window. `chosen` is called once, later: with the file's absolute path, or
    // with nothing when the panel was dismissed. A panel goes with its window; then nobody is left to be told.
    virtual void openFile(const OpenFileRequest& request,
                          std::function<void(std::optional<std::string>)> chosen) = 0;
};

} // namespace fernwick::platform
