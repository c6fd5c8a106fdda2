// Whatever stands at a path, handled whole: a file, a link, or a folder with all that it holds.
// Threads: any.
#pragma once

#include "platform/FileSystem.h"

#include <expected>
#include <string>
#include <vector>

namespace fernwick::platform {

class FileItems {
public:
    virtual ~FileItems() = default;

    // The names of what stands at the top of a folder, hidden ones included, in the file system's own order.
    [[nodiscard]] virtual std::expected<std::vector<std::string>, FileError>
    names(const std::string& folder) = 0;

    // Copies an item with its permissions and times of change; a link is copied as the link it is. Nothing may
    // stand at the new path. The copy appears there whole or not at all, also when the process is killed; what
    // a failure or a kill leaves is hidden beside it, and goes with the next copy to that path.
    [[nodiscard]] virtual std::expected<void, FileError> copy(const std::string& from,
                                                              const std::string& to) = 0;

    // Moves an item, also to another file system. Nothing may stand at the new path.
    [[nodiscard]] virtual std::expected<void, FileError> move(const std::string& from,
                                                              const std::string& to) = 0;

    // Removes an item; a link, not what it leads to.
    [[nodiscard]] virtual std::expected<void, FileError> remove(const std::string& path) = 0;

    // Whether the application may write to the item: to a file's content, to the names in a folder. False when
    // nothing is there, and on a disk that is mounted read-only (access(2)).
    [[nodiscard]] virtual bool isWritable(const std::string& path) = 0;
};

} // namespace fernwick::platform
