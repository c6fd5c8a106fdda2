#include "platform/posix/FileTree.h"

#include "platform/posix/FileDescriptor.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <filesystem>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

namespace fernwick::platform {

namespace {

constexpr mode_t kPermissionBits = 07777;
constexpr mode_t kWhileFilling = 0700; // nobody else looks into a folder before it has its own permissions

struct CloseFolder {
    void operator()(DIR* folder) const { closedir(folder); }
};

// Zero, or the number of the error of a call that has just answered.
int errorOf(int answer) {
    return answer == 0 ? 0 : errno;
}

std::array<timespec, 2> timesOf(const struct stat& item) {
    return {item.st_atim, item.st_mtim};
}

int copyBytes(int from, int to) {
    constexpr std::size_t kPiece = std::size_t{256} * 1024;
    const auto piece = std::make_unique<std::array<char, kPiece>>();
    while (true) {
        const auto count = read(from, piece->data(), piece->size());
        if (count == 0) {
            return 0;
        }
        if (count < 0 && errno != EINTR) {
            return errno;
        }
        for (ssize_t done = 0; done < count;) {
            const auto written = write(to, piece->data() + done, static_cast<std::size_t>(count - done));
            if (written < 0 && errno != EINTR) {
                return errno;
            }
            done += std::max<ssize_t>(written, 0);
        }
    }
}

int copyFile(const std::string& from, const std::string& to) {
    // Not blocking, since a pipe that has taken the file's place would wait for a writer.
    const FileDescriptor source(open(from.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    struct stat status = {};
    if (!source || fstat(source.get(), &status) != 0) {
        return errno;
    }
    if (!S_ISREG(status.st_mode)) {
        return EOPNOTSUPP;
    }
    FileDescriptor target(open(to.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
    if (!target) {
        return errno;
    }
    if (const int code = copyBytes(source.get(), target.get()); code != 0) {
        return code;
    }
    if (fchmod(target.get(), status.st_mode & kPermissionBits) != 0 ||
        futimens(target.get(), timesOf(status).data()) != 0) {
        return errno;
    }
    return target.close();
}

int copyLink(const std::string& from, const std::string& to, const struct stat& status) {
    std::error_code error;
    const auto target = std::filesystem::read_symlink(from, error);
    if (error) {
        return error.value();
    }
    if (symlink(target.c_str(), to.c_str()) != 0) {
        return errno;
    }
    return errorOf(utimensat(AT_FDCWD, to.c_str(), timesOf(status).data(), AT_SYMLINK_NOFOLLOW));
}

int copyFolder(const std::string& from, const std::string& to, const struct stat& status) {
    const auto names = namesIn(from);
    if (!names) {
        return names.error();
    }
    if (mkdir(to.c_str(), kWhileFilling) != 0) {
        return errno;
    }
    for (const auto& name : *names) {
        if (const int code = copyTree(from + "/" + name, to + "/" + name); code != 0) {
            return code;
        }
    }
    if (chmod(to.c_str(), status.st_mode & kPermissionBits) != 0) {
        return errno;
    }
    return errorOf(utimensat(AT_FDCWD, to.c_str(), timesOf(status).data(), 0));
}

} // namespace

std::expected<std::vector<std::string>, int> namesIn(const std::string& folder) {
    const std::unique_ptr<DIR, CloseFolder> opened(opendir(folder.c_str()));
    if (!opened) {
        return std::unexpected(errno);
    }
    std::vector<std::string> names;
    errno = 0;
    while (const dirent* found = readdir(opened.get())) {
        std::string name = found->d_name;
        if (name != "." && name != "..") {
            names.push_back(std::move(name));
        }
        errno = 0;
    }
    if (errno != 0) {
        return std::unexpected(errno);
    }
    return names;
}

int copyTree(const std::string& from, const std::string& to) {
    struct stat status = {};
    if (lstat(from.c_str(), &status) != 0) {
        return errno;
    }
    if (S_ISDIR(status.st_mode)) {
        return copyFolder(from, to, status);
    }
    if (S_ISLNK(status.st_mode)) {
        return copyLink(from, to, status);
    }
    return S_ISREG(status.st_mode) ? copyFile(from, to) : EOPNOTSUPP;
}

int removeTree(const std::string& path) {
    struct stat status = {};
    if (lstat(path.c_str(), &status) != 0) {
        return errno;
    }
    // Goes by descriptors from folder to folder. By paths, whoever may rename in one of them, as the owner of a
    // folder in /tmp may, could have us walk through a link that has just taken a folder's place.
    std::error_code error;
    std::filesystem::remove_all(path, error);
    return error.value();
}

void clearTree(const std::string& path) {
    struct stat status = {};
    if (lstat(path.c_str(), &status) != 0) {
        return;
    }
    if (!S_ISDIR(status.st_mode)) {
        unlink(path.c_str());
        return;
    }
    chmod(path.c_str(), kWhileFilling);
    for (const auto& name : namesIn(path).value_or(std::vector<std::string>())) {
        clearTree(path + "/" + name);
    }
    rmdir(path.c_str());
}

} // namespace fernwick::platform
