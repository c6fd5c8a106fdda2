// Watches a folder that may not be there yet, and that may go and come again, by inotify(7).
// Threads: made and destroyed on one thread; a thread of its own sleeps until the kernel tells of a change.
#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <string>

namespace fernwick::platform {

// What happened in the folder.
struct FolderNews {
    // Any file may have changed: the watch has just begun, the folder came, went or was replaced, or the kernel
    // lost count.
    bool everything = false;
    // By name, the files that something happened to: true when the file is at rest, that is closed after
    // writing, put there, taken away or removed; false while somebody writes to it.
    std::map<std::string, bool> files;
};

class FolderWatch {
public:
    using Handler = std::function<void(const FolderNews&)>;

    // How long the destructor waits for a thread that the disk holds.
    static constexpr std::chrono::milliseconds kPatience{200};

    // The handler is called on the watch's thread. Links in the path are followed. Where the kernel gives no
    // watch, a line on standard error says so and nothing is told. Not seen: folders further above that are
    // renamed, what is mounted over the folder, and what comes to where a link led nowhere.
    FolderWatch(std::string path, Handler handler);
    FolderWatch(const FolderWatch&) = delete;
    FolderWatch& operator=(const FolderWatch&) = delete;
    // The handler is not called any more. A thread that the disk holds is left behind, and ends when the disk
    // lets it.
    ~FolderWatch();

private:
    class State;

    std::shared_ptr<State> state_; // shared with the thread
};

} // namespace fernwick::platform
