// Files that are read and replaced whole. Numbers returned as errors are the system's (errno(3)).
// Threads: any; two writers of one file must not write at the same time in one process.
#pragma once

#include <cstddef>
#include <expected>
#include <string>
#include <string_view>
#include <vector>

namespace fernwick::platform {

// The bytes of a regular file; EINVAL for anything that is not one, EFBIG beyond what a property list may have.
[[nodiscard]] std::expected<std::string, int> readWholeFile(const std::string& path);

// The same for a file of `most` bytes or fewer; EFBIG beyond.
[[nodiscard]] std::expected<std::string, int> readWholeFile(const std::string& path, std::size_t most);

struct ReplaceOptions {
    unsigned mode = 0600; // the permission bits, which the file has from its first instant
    bool durable = true;  // the new file is on disk before it takes the old one's place, and the folder's entry
                          // before the call returns
};

// Replaces the file, or makes it. Returns 0, or the error that left the old file as it was.
[[nodiscard]] int replaceFile(const std::string& path, std::string_view bytes, ReplaceOptions options = {});

// Where this process makes what is to stand at the path: beside it, and hidden.
[[nodiscard]] std::string temporaryPath(const std::string& path);

// What stands where other processes made what was to stand at the path, and run no more.
[[nodiscard]] std::vector<std::string> abandonedTemporaries(const std::string& path);

// Removes what replaceFile left beside the path when its process was killed. Files of processes that run are
// spared.
void removeTemporaryFiles(const std::string& path);

// The same for all files of a folder whose names begin with `names`.
void removeTemporaryFilesOf(const std::string& folder, const std::string& names);

// Renames whatever stands there to a path where nothing stands; EEXIST when something does. Returns 0 or the
// error.
[[nodiscard]] int renameToFree(const std::string& from, const std::string& to);

// Renames the file to `prefix` and the first number from 1 that is free. The new path, or the error.
[[nodiscard]] std::expected<std::string, int> moveAside(const std::string& path, const std::string& prefix);

// Makes the folder and those above it that are missing, with mode 0700. Returns 0 or the error.
[[nodiscard]] int makeFolders(const std::string& path);

// The path that a chain of symbolic links leads to, whether there is a file or not; the path itself in a
// circle.
[[nodiscard]] std::string followLinks(const std::string& path);

// The folder that the path lies in.
[[nodiscard]] std::string parentFolder(const std::string& path);

} // namespace fernwick::platform
