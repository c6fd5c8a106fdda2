#include "platform/posix/PosixFileSystem.h"

#include "platform/posix/AtomicFile.h"
#include "platform/posix/SystemError.h"

#include <cerrno>
#include <unistd.h>

namespace fernwick::platform {

namespace {

std::expected<void, FileError> result(int code) {
    if (code == 0) {
        return {};
    }
    return std::unexpected(FileError{code, describeError(code)});
}

} // namespace

std::expected<void, FileError> PosixFileSystem::write(const std::string& path, std::string_view bytes,
                                                      unsigned mode) {
    return result(replaceFile(path, bytes, {.mode = mode, .durable = false}));
}

std::expected<void, FileError> PosixFileSystem::makeFolder(const std::string& path) {
    return result(makeFolders(path));
}

bool PosixFileSystem::exists(const std::string& path) {
    return access(path.c_str(), F_OK) == 0;
}

bool PosixFileSystem::isReadable(const std::string& path) {
    return access(path.c_str(), R_OK) == 0;
}

std::expected<std::string, FileError> PosixFileSystem::read(const std::string& path) {
    auto bytes = readWholeFile(path);
    if (!bytes) {
        return std::unexpected(FileError{bytes.error(), describeError(bytes.error())});
    }
    return *std::move(bytes);
}

std::expected<void, FileError> PosixFileSystem::remove(const std::string& path) {
    return result(unlink(path.c_str()) == 0 ? 0 : errno);
}

} // namespace fernwick::platform
