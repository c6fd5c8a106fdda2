// The system's own panels.
// Threads: main thread. No panel holds up the event loop.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace fernwick::platform {

// Which files a panel offers, e.g. "Backups" for `json` and `backup`; all of them can be asked for as well.
struct FileKind {
    std::string name;
    std::vector<std::string> extensions; // without the dot
};

// A panel that asks for existing files, no folder.
struct OpenFileRequest {
    std::string title;
    std::string message; // a line of advice above the files, where the panel has a place for it
    std::string folder;  // where it starts, an absolute path; hidden files are shown. Empty: where Qt would
    std::optional<FileKind> kind = std::nullopt; // none: every file
};

// A panel that asks for one existing folder, and lets the person make a new one.
struct FolderRequest {
    std::string message; // the advice; it is the title where the panel has no other place for it
    std::string folder;  // where it starts, an absolute path, or empty
};

// A panel that asks where to save. It asks before a file is replaced.
struct SaveFileRequest {
    std::string name; // the suggested one, kept as it is, colons included
    FileKind kind;
};

class Dialogs {
public:
    virtual ~Dialogs() = default;

    // Opens the panel over the active window. `chosen` is called once, later: with the file's absolute path, or
    // with nothing when the panel was dismissed. A panel goes with its window; then nobody is left to be told.
    virtual void openFile(const OpenFileRequest& request,
                          std::function<void(std::optional<std::string>)> chosen) = 0;

    // The same for any number of files: their paths in the panel's order, and none when it was dismissed.
    virtual void openFiles(const OpenFileRequest& request,
                           std::function<void(std::vector<std::string>)> chosen) = 0;

    // The same for a folder.
    virtual void chooseFolder(const FolderRequest& request,
                              std::function<void(std::optional<std::string>)> chosen) = 0;

    // The same for the path of a file that is to be written.
    virtual void saveFile(const SaveFileRequest& request,
                          std::function<void(std::optional<std::string>)> chosen) = 0;
};

} // namespace fernwick::platform
