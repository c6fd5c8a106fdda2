#include "platform/posix/AtomicFile.h"

#include "platform/posix/FileDescriptor.h"
#include "platform/posix/PropertyListGuard.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace fernwick::platform {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view kTemporaryMark = ".tmp-"; // followed by the writer's process id

// Writes all of it. Returns 0 or the error.
int writeAll(int descriptor, std::string_view bytes) {
    while (!bytes.empty()) {
        const auto count = write(descriptor, bytes.data(), bytes.size());
        if (count < 0 && errno != EINTR) {
            return errno;
        }
        bytes.remove_prefix(count > 0 ? static_cast<std::size_t>(count) : 0);
    }
    return 0;
}

// Writes the file that is to take another's place. Returns 0 or the error.
int writeNew(const std::string& path, std::string_view bytes, const ReplaceOptions& options) {
    const FileDescriptor file(open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC,
                                   static_cast<mode_t>(options.mode)));
    // The process's mask may have taken a bit away; it can have added none.
    if (!file || fchmod(file.get(), static_cast<mode_t>(options.mode)) != 0) {
        return errno;
    }
    const int code = writeAll(file.get(), bytes);
    return code != 0 || !options.durable || fsync(file.get()) == 0 ? code : errno;
}

int syncFolder(const std::string& path) {
    const FileDescriptor folder(open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    // Some file systems have nothing to synchronise in a folder and answer EINVAL.
    return !folder || fsync(folder.get()) == 0 || errno == EINVAL ? 0 : errno;
}

// Of the temporary files of a path, all but the mark and the process. They are hidden: whoever lists the folder
// by the first letters of a name must not take half a file for a whole one.
std::string temporaryPrefix(const std::string& path) {
    constexpr std::size_t kLongestName = 200; // of the 255 bytes of a name, so that the mark and a number fit
    const auto name = path.rfind('/') + 1;    // 0 without a folder
    auto end = std::min(path.size(), name + kLongestName);
    while (end < path.size() && (static_cast<unsigned char>(path[end]) & 0xC0U) == 0x80U) {
        --end; // not within a character, which some file systems refuse
    }
    return path.substr(0, name) + "." + path.substr(name, end - name);
}

// The process that writes a temporary file of that name; 0 when it is no such name.
pid_t writerOf(std::string_view name) {
    const auto mark = name.rfind(kTemporaryMark);
    const auto number = mark == std::string_view::npos ? "" : name.substr(mark + kTemporaryMark.size());
    pid_t pid = 0;
    const auto parsed = std::from_chars(number.data(), number.data() + number.size(), pid);
    return parsed.ec == std::errc() && parsed.ptr == number.data() + number.size() && pid > 0 ? pid : 0;
}

// The temporary files in a folder whose names begin so and whose writers run no more.
std::vector<std::string> findDead(const std::string& folder, const std::string& prefix) {
    std::error_code ignored; // a folder that cannot be listed keeps what is in it
    std::vector<std::string> dead;
    for (fs::directory_iterator place(folder, ignored), end; !ignored && place != end;
         place.increment(ignored)) {
        const auto name = place->path().filename().string();
        const auto writer = name.starts_with(prefix) ? writerOf(name) : 0;
        if (writer > 0 && kill(writer, 0) != 0 && errno == ESRCH) {
            dead.push_back(place->path().string());
        }
    }
    return dead;
}

void removeFiles(const std::vector<std::string>& files) {
    for (const auto& file : files) {
        unlink(file.c_str());
    }
}

} // namespace

std::expected<std::string, int> readWholeFile(const std::string& path) {
    return readWholeFile(path, kLargestPropertyList);
}

std::expected<std::string, int> readWholeFile(const std::string& path, std::size_t most) {
    // Not blocking, since a named pipe would otherwise wait for a writer.
    const FileDescriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat found = {};
    if (!file || fstat(file.get(), &found) != 0) {
        return std::unexpected(errno);
    }
    if (!S_ISREG(found.st_mode)) {
        return std::unexpected(S_ISDIR(found.st_mode) ? EISDIR : EINVAL);
    }
    if (found.st_size > static_cast<off_t>(most)) {
        return std::unexpected(EFBIG);
    }
    std::string bytes(static_cast<std::size_t>(found.st_size), '\0');
    std::size_t size = 0;
    while (size < bytes.size()) {
        const auto count = read(file.get(), bytes.data() + size, bytes.size() - size);
        if (count < 0 && errno != EINTR) {
            return std::unexpected(errno);
        }
        if (count == 0) {
            break; // cut short by someone else meanwhile
        }
        size += count > 0 ? static_cast<std::size_t>(count) : 0;
    }
    bytes.resize(size);
    return bytes;
}

int replaceFile(const std::string& path, std::string_view bytes, ReplaceOptions options) {
    const auto temporary = temporaryPath(path);
    unlink(temporary.c_str()); // of an earlier process with our number
    int code = writeNew(temporary, bytes, options);
    if (code == 0 && std::rename(temporary.c_str(), path.c_str()) != 0) {
        code = errno;
    }
    if (code != 0) {
        unlink(temporary.c_str());
        return code;
    }
    return options.durable ? syncFolder(parentFolder(path)) : 0;
}

std::string temporaryPath(const std::string& path) {
    return temporaryPrefix(path) + std::string(kTemporaryMark) + std::to_string(getpid());
}

std::vector<std::string> abandonedTemporaries(const std::string& path) {
    return findDead(parentFolder(path),
                    fs::path(temporaryPrefix(path) + std::string(kTemporaryMark)).filename().string());
}

void removeTemporaryFiles(const std::string& path) {
    removeFiles(abandonedTemporaries(path));
}

void removeTemporaryFilesOf(const std::string& folder, const std::string& names) {
    removeFiles(findDead(folder, "." + names));
}

int renameToFree(const std::string& from, const std::string& to) {
    if (renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) {
        return 0;
    }
    if (errno != EINVAL && errno != ENOSYS) {
        return errno;
    }
    // A file system that cannot promise it, or a folder on its way into itself; the second try tells.
    struct stat found = {};
    if (lstat(to.c_str(), &found) == 0) {
        return EEXIST;
    }
    return std::rename(from.c_str(), to.c_str()) == 0 ? 0 : errno;
}

std::expected<std::string, int> moveAside(const std::string& path, const std::string& prefix) {
    for (int number = 1;; ++number) {
        auto place = prefix + std::to_string(number);
        const int code = renameToFree(path, place);
        if (code == 0) {
            return place;
        }
        if (code != EEXIST) {
            return std::unexpected(code);
        }
    }
}

int makeFolders(const std::string& path) {
    struct stat found = {};
    if (stat(path.c_str(), &found) == 0) {
        return S_ISDIR(found.st_mode) ? 0 : ENOTDIR;
    }
    if (errno != ENOENT || path == "/") {
        return errno;
    }
    if (const int code = makeFolders(parentFolder(path)); code != 0) {
        return code;
    }
    return mkdir(path.c_str(), 0700) == 0 || errno == EEXIST ? 0 : errno;
}

std::string followLinks(const std::string& path) {
    constexpr int kLongestChain = 40; // as the kernel's own limit (path_resolution(7))
    fs::path reached = path;
    for (int link = 0; link < kLongestChain; ++link) {
        std::error_code error;
        const auto next = fs::read_symlink(reached, error);
        if (error) {
            return reached.string(); // no link, or nothing there
        }
        reached = next.is_absolute() ? next : reached.parent_path() / next;
    }
    return path;
}

std::string parentFolder(const std::string& path) {
    auto parent = fs::path(path).parent_path();
    return parent.empty() ? "." : parent.string();
}

} // namespace fernwick::platform
