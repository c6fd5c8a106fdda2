#include "platform/linux/InotifyWatch.h"

#include "platform/posix/AtomicFile.h"

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <filesystem>
#include <sys/inotify.h>
#include <unistd.h>

namespace fernwick::platform {

namespace {

namespace fs = std::filesystem;

constexpr std::uint32_t kItself = IN_DELETE_SELF | IN_MOVE_SELF | IN_UNMOUNT | IN_IGNORED;
// IN_CREATE is there for hard links, which nobody closes.
constexpr std::uint32_t kAtRest = IN_CLOSE_WRITE | IN_MOVED_TO | IN_MOVED_FROM | IN_DELETE | IN_CREATE;
constexpr std::uint32_t kComesOrGoes = IN_CREATE | IN_MOVED_TO | IN_MOVED_FROM | IN_DELETE;

bool isMissing(int code) {
    return code == ENOENT || code == ENOTDIR;
}

bool isFolder(const std::string& path) {
    std::error_code ignored; // what cannot be looked at is no folder for us
    return fs::is_directory(path, ignored);
}

// The watch, or -1. A folder that is watched already is watched for both.
int watch(int inotify, const std::string& path, std::uint32_t mask) {
    return inotify_add_watch(inotify, path.c_str(), mask | IN_ONLYDIR | IN_MASK_ADD);
}

} // namespace

InotifyWatch::InotifyWatch(const std::string& path) {
    constexpr int kAttempts = 20; // as often as the folders may change while they are looked at
    for (int attempt = 0; attempt < kAttempts && !arm(path); ++attempt) {
    }
}

bool InotifyWatch::arm(const std::string& path) {
    error_ = 0;
    above_ = -1;
    inotify_.reset(); // first: a person may have few of them
    inotify_ = FileDescriptor(inotify_init1(IN_NONBLOCK | IN_CLOEXEC));
    if (!inotify_) {
        error_ = errno;
        return true;
    }
    folder_ =
        watch(inotify_.get(), path, IN_MODIFY | IN_CLOSE_WRITE | kComesOrGoes | IN_DELETE_SELF | IN_MOVE_SELF);
    if (folder_ < 0 && !isMissing(errno)) {
        error_ = errno;
    }
    return watchAbove(path);
}

bool InotifyWatch::watchAbove(const std::string& path) {
    const bool found = folder_ >= 0;
    std::string reached = path;
    do {
        awaited_ = fs::path(reached).filename().string();
        const auto next = parentFolder(reached);
        if (next == reached) {
            break; // the root, which is always there
        }
        reached = next;
        above_ = watch(inotify_.get(), reached, kComesOrGoes | IN_DELETE_SELF | IN_MOVE_SELF);
    } while (above_ < 0 && isMissing(errno));
    if (above_ < 0) {
        error_ = error_ != 0 ? error_ : errno;
        return true;
    }
    // What came between the two looks is seen by nobody, unless it is looked for.
    return found || error_ != 0 || !isFolder(reached + "/" + awaited_);
}

FolderNews InotifyWatch::read() {
    FolderNews news;
    alignas(inotify_event) std::array<std::byte, 16UL * 1024> buffer{};
    for (auto count = ::read(inotify_.get(), buffer.data(), buffer.size()); count > 0;
         count = ::read(inotify_.get(), buffer.data(), buffer.size())) {
        for (std::size_t at = 0; at < static_cast<std::size_t>(count);) {
            inotify_event event{};
            std::memcpy(&event, buffer.data() + at, sizeof(event));
            // The name is filled up with NULs.
            const auto* name = reinterpret_cast<const char*>(buffer.data()) + at + sizeof(event);
            take(event.wd, event.mask, std::string_view(name, strnlen(name, event.len)), news);
            at += sizeof(event) + event.len;
        }
    }
    return news;
}

void InotifyWatch::take(int watch, std::uint32_t happened, std::string_view name, FolderNews& news) const {
    if ((happened & (IN_Q_OVERFLOW | kItself)) != 0 ||
        (watch == above_ && (happened & kComesOrGoes) != 0 && name == awaited_)) {
        news.everything = true;
    }
    if (watch != folder_ || name.empty() || (happened & IN_ISDIR) != 0) {
        return;
    }
    if ((happened & IN_MODIFY) != 0) {
        news.files.insert_or_assign(std::string(name), false);
    } else if ((happened & kAtRest) != 0) {
        news.files.insert_or_assign(std::string(name), true);
    }
}

} // namespace fernwick::platform
