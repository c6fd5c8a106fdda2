// Files that are read, written and removed whole.
// Threads: any.
#pragma once

#include "support/Date.h"

#include <cstdint>
#include <expected>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace fernwick::platform {

struct FileError {
    int code = 0;            // the system's error number
    std::string description; // what a person reads, e.g. "No space left on device"
};

// Permission bits of a file that its owner alone may read, write and run.
inline constexpr unsigned kOwnerOnlyProgram = 0700;

// Permission bits of a file that its owner alone may read and write.
inline constexpr unsigned kOwnerOnlyFile = 0600;

// What stands in a folder.
struct FolderEntry {
    std::string name;                      // without the folder
    std::optional<support::Date> modified; // when its content changed last; absent when that is not known
    std::optional<std::int64_t> size;      // in bytes; absent when that is not known

    bool operator==(const FolderEntry&) const = default;
};

class FileSystem {
public:
    virtual ~FileSystem() = default;

    // Makes the file, or replaces it, atomically: nobody ever sees a part of it, nor any part of it with other
    // permissions than `mode`. Does not wait until it is on disk. On failure nothing is left behind.
    [[nodiscard]] virtual std::expected<void, FileError> write(const std::string& path, std::string_view bytes,
                                                               unsigned mode) = 0;

    // Replaces what is in a file of somebody else's making, atomically as `write` does. Symbolic links are
    // followed and stay, and the file keeps its permission bits; one that is missing is made with those of
    // `modeOfNew`. Anything but a regular file is refused.
    [[nodiscard]] virtual std::expected<void, FileError>
    replaceContent(const std::string& path, std::string_view bytes, unsigned modeOfNew) = 0;

    // Makes the folder and those above it that are missing, for the owner alone. One that is there is success.
    [[nodiscard]] virtual std::expected<void, FileError> makeFolder(const std::string& path) = 0;

    // Whether there is anything at the path, links followed.
    [[nodiscard]] virtual bool exists(const std::string& path) = 0;

    // Whether the application may read what is at the path; false when nothing is there.
    [[nodiscard]] virtual bool isReadable(const std::string& path) = 0;

    // The bytes of a regular file.
    [[nodiscard]] virtual std::expected<std::string, FileError> read(const std::string& path) = 0;

    // What stands in a folder, hidden things left out, in the file system's own order.
    [[nodiscard]] virtual std::expected<std::vector<FolderEntry>, FileError>
    list(const std::string& folder) = 0;

    // Removes a file.
    [[nodiscard]] virtual std::expected<void, FileError> remove(const std::string& path) = 0;
};

} // namespace fernwick::platform
