// One instance of inotify(7), set on a folder and on the one that it lies in. Where the folder is missing, it
// is set on the nearest folder above that is there, to see the next one on the way to it come. Threads: one at
// a time. Making one may wait for the disk.
#pragma once

#include "platform/linux/FolderWatch.h"
#include "platform/posix/FileDescriptor.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace fernwick::platform {

class InotifyWatch {
public:
    explicit InotifyWatch(const std::string& path);

    // Readable when something happened; -1 when the kernel gave no watch at all.
    [[nodiscard]] int descriptor() const { return inotify_.get(); }

    // Why the folder, or the place where it would come, is not watched; 0 when it is.
    [[nodiscard]] int error() const { return error_; }

    // Reads what happened since. When the folder itself came, went or was replaced, or events were lost, this
    // says that anything may have changed, and the watch is spent: make a new one.
    [[nodiscard]] FolderNews read();

private:
    // Both return whether the watch is complete; when not, the folders changed meanwhile.
    [[nodiscard]] bool arm(const std::string& path);
    [[nodiscard]] bool watchAbove(const std::string& path);

    void take(int watch, std::uint32_t happened, std::string_view name, FolderNews& news) const;

    FileDescriptor inotify_;
    int folder_ = -1; // its watch
    int above_ = -1;  // the watch of the folder in which `awaited_` stands or will
    std::string awaited_;
    int error_ = 0;
};

} // namespace fernwick::platform
