// Files, links and folders by the calls of POSIX.
#pragma once

#include "platform/FileItems.h"

namespace fernwick::platform {

// Of a copy that is under way, the top is named `.<name>.tmp-<process id>`. The depth of a folder ends where
// its longest path does (PATH_MAX); what is deeper is an error, as are pipes, sockets and devices.
class PosixFileItems final : public FileItems {
public:
    [[nodiscard]] std::expected<std::vector<std::string>, FileError> names(const std::string& folder) override;
    [[nodiscard]] std::expected<void, FileError> copy(const std::string& from, const std::string& to) override;
    [[nodiscard]] std::expected<void, FileError> move(const std::string& from, const std::string& to) override;
    [[nodiscard]] std::expected<void, FileError> remove(const std::string& path) override;
    [[nodiscard]] bool isWritable(const std::string& path) override;
};

} // namespace fernwick::platform
