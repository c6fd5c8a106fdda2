// Files in memory, which can fail on command.
// Threads: the test's thread.
#pragma once

#include "platform/FileSystem.h"

#include <map>
#include <optional>
#include <string>
#include <utility>

namespace fernwick::fakes {

class FakeFileSystem final : public platform::FileSystem {
public:
    struct File {
        std::string bytes;
        unsigned mode = 0;
    };

    [[nodiscard]] std::expected<void, platform::FileError>
    write(const std::string& path, std::string_view bytes, unsigned mode) override {
        if (writeFailure) {
            return std::unexpected(*writeFailure);
        }
        files.insert_or_assign(path, File{std::string(bytes), mode});
        return {};
    }
    [[nodiscard]] std::expected<void, platform::FileError> remove(const std::string& path) override {
        if (files.erase(path) == 0) {
            return std::unexpected(platform::FileError{2, "No such file or directory"});
        }
        return {};
    }

    std::map<std::string, File> files;
    std::optional<platform::FileError> writeFailure;
};

} // namespace fernwick::fakes
