#include "platform/posix/PosixFileSystem.h"

#include "platform/posix/AtomicFile.h"
#include "platform/posix/SystemError.h"

#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

namespace fernwick::platform {

namespace {

std::expected<void, FileError> result(int code) {
    if (code == 0) {
        return {};
    }
    return std::unexpected(FileError{code, describeError(code)});
}

struct CloseFolder {
    void operator()(DIR* folder) const { closedir(folder); }
};

FolderEntry describe(int folder, const char* name) {
    struct stat status{};
    if (fstatat(folder, name, &status, 0) != 0) {
        return {.name = name, .modified = std::nullopt, .size = std::nullopt};
    }
    const auto seconds =
        static_cast<double>(status.st_mtim.tv_sec) + static_cast<double>(status.st_mtim.tv_nsec) / 1e9;
    return {.name = name,
            .modified = support::Date{seconds - support::Date::kUnixEpochOffset},
            .size = static_cast<std::int64_t>(status.st_size)};
}

} // namespace

std::expected<void, FileError> PosixFileSystem::write(const std::string& path, std::string_view bytes,
                                                      unsigned mode) {
    return result(replaceFile(path, bytes, {.mode = mode, .durable = false}));
}

std::expected<void, FileError> PosixFileSystem::replaceContent(const std::string& path, std::string_view bytes,
                                                               unsigned modeOfNew) {
    const auto file = followLinks(path);
    struct stat status{};
    const bool isThere = stat(file.c_str(), &status) == 0;
    if (!isThere && errno != ENOENT) {
        return result(errno);
    }
    if (isThere && !S_ISREG(status.st_mode)) {
        return result(S_ISDIR(status.st_mode) ? EISDIR : EINVAL);
    }
    constexpr unsigned kPermissionBits = 07777;
    return write(file, bytes, isThere ? status.st_mode & kPermissionBits : modeOfNew);
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

std::expected<std::vector<FolderEntry>, FileError> PosixFileSystem::list(const std::string& folder) {
    const std::unique_ptr<DIR, CloseFolder> opened(opendir(folder.c_str()));
    if (!opened) {
        return std::unexpected(FileError{errno, describeError(errno)});
    }
    std::vector<FolderEntry> entries;
    errno = 0;
    while (const dirent* found = readdir(opened.get())) {
        if (found->d_name[0] != '.') {
            entries.push_back(describe(dirfd(opened.get()), found->d_name));
        }
        errno = 0;
    }
    if (errno != 0) {
        return std::unexpected(FileError{errno, describeError(errno)});
    }
    return entries;
}

std::expected<void, FileError> PosixFileSystem::remove(const std::string& path) {
    return result(unlink(path.c_str()) == 0 ? 0 : errno);
}

} // namespace fernwick::platform
