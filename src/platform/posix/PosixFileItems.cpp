#include "platform/posix/PosixFileItems.h"

#include "platform/posix/AtomicFile.h"
#include "platform/posix/FileTree.h"
#include "platform/posix/SystemError.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

namespace fernwick::platform {

namespace {

namespace fs = std::filesystem;

std::expected<void, FileError> result(int code) {
    if (code == 0) {
        return {};
    }
    return std::unexpected(FileError{code, describeError(code)});
}

bool isFolder(const std::string& path) {
    struct stat status = {};
    return lstat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

// Whether a path leads to the folder or below it, links followed.
bool isWithin(const std::string& path, const std::string& folder) {
    std::error_code unknown; // a place that is not there is told by what comes next
    const auto inner = fs::canonical(path, unknown);
    const auto outer = unknown ? fs::path() : fs::canonical(folder, unknown);
    return !unknown &&
           std::mismatch(outer.begin(), outer.end(), inner.begin(), inner.end()).first == outer.end();
}

// Zero when a copy can be begun, or the error.
int refusal(const std::string& from, const std::string& to) {
    struct stat status = {};
    if (lstat(from.c_str(), &status) != 0) {
        return errno;
    }
    if (lstat(to.c_str(), &status) == 0) {
        return EEXIST;
    }
    return isFolder(from) && isWithin(parentFolder(to), from) ? EINVAL : 0;
}

int copyWhole(const std::string& from, const std::string& to) {
    if (const int code = refusal(from, to); code != 0) {
        return code;
    }
    for (const auto& abandoned : abandonedTemporaries(to)) {
        clearTree(abandoned);
    }
    const auto temporary = temporaryPath(to);
    clearTree(temporary); // of an earlier process with our number
    int code = copyTree(from, temporary);
    if (code == 0) {
        code = renameToFree(temporary, to);
    }
    if (code != 0) {
        clearTree(temporary);
    }
    return code;
}

} // namespace

std::expected<std::vector<std::string>, FileError> PosixFileItems::names(const std::string& folder) {
    auto names = namesIn(folder);
    if (!names) {
        return std::unexpected(FileError{names.error(), describeError(names.error())});
    }
    return *std::move(names);
}

std::expected<void, FileError> PosixFileItems::copy(const std::string& from, const std::string& to) {
    return result(copyWhole(from, to));
}

std::expected<void, FileError> PosixFileItems::move(const std::string& from, const std::string& to) {
    int code = renameToFree(from, to);
    if (code == EXDEV) {
        code = copyWhole(from, to);
        if (code == 0) {
            code = removeTree(from);
        }
    }
    return result(code);
}

std::expected<void, FileError> PosixFileItems::remove(const std::string& path) {
    return result(removeTree(path));
}

bool PosixFileItems::isWritable(const std::string& path) {
    std::error_code unknown;
    const bool folder = fs::is_directory(path, unknown);
    return access(path.c_str(), folder ? W_OK | X_OK : W_OK) == 0;
}

} // namespace fernwick::platform
