// Files by the calls of POSIX.
#pragma once

#include "platform/FileSystem.h"

namespace fernwick::platform {

class PosixFileSystem final : public FileSystem {
public:
    [[nodiscard]] std::expected<void, FileError> write(const std::string& path, std::string_view bytes,
                                                       unsigned mode) override;
    [[nodiscard]] std::expected<void, FileError> replaceContent(const std::string& path, std::string_view bytes,
                                                                unsigned modeOfNew) override;
    [[nodiscard]] std::expected<void, FileError> makeFolder(const std::string& path) override;
    [[nodiscard]] bool exists(const std::string& path) override;
    [[nodiscard]] bool isReadable(const std::string& path) override;
    [[nodiscard]] std::expected<std::string, FileError> read(const std::string& path) override;
    [[nodiscard]] std::expected<std::vector<FolderEntry>, FileError> list(const std::string& folder) override;
    [[nodiscard]] std::expected<void, FileError> remove(const std::string& path) override;
};

} // namespace fernwick::platform
