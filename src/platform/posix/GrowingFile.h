// A new file that is written piece by piece, and that is gone again unless it is kept.
// Threads: any, one at a time.
#pragma once

#include "platform/FileSystem.h"
#include "platform/posix/FileDescriptor.h"

#include <expected>
#include <string>
#include <string_view>

namespace fernwick::platform {

class GrowingFile {
public:
    // A new file in the folder, with a name that nobody can know beforehand; its owner alone may read and write
    // it (mkstemp(3)).
    [[nodiscard]] static std::expected<GrowingFile, FileError> in(const std::string& folder);

    GrowingFile(GrowingFile&& other) noexcept = default;
    GrowingFile& operator=(GrowingFile&& other) = delete;
    GrowingFile(const GrowingFile&) = delete;
    GrowingFile& operator=(const GrowingFile&) = delete;
    // Removes the file unless it was kept.
    ~GrowingFile();

    // Appends the bytes.
    [[nodiscard]] std::expected<void, FileError> append(std::string_view bytes);

    // Closes the file and leaves it where it is: its absolute path. Some file systems tell only now that they
    // are full.
    [[nodiscard]] std::expected<std::string, FileError> keep();

private:
    GrowingFile(FileDescriptor file, std::string path) : file_(std::move(file)), path_(std::move(path)) {}

    FileDescriptor file_;
    std::string path_;
};

} // namespace fernwick::platform
