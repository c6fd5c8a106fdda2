#include "platform/posix/InstanceLock.h"

#include "platform/posix/AtomicFile.h"
#include "platform/posix/SystemError.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/file.h>

namespace fernwick::platform {

InstanceLock::Outcome InstanceLock::take() {
    if (file_) {
        return Outcome::held;
    }
    int code = makeFolders(parentFolder(path_));
    if (code == 0) {
        FileDescriptor file(open(path_.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600));
        if (file && flock(file.get(), LOCK_EX | LOCK_NB) == 0) {
            file_ = std::move(file);
            return Outcome::held;
        }
        if (errno == EWOULDBLOCK) {
            return Outcome::heldByOther;
        }
        code = errno;
    }
    const auto line = "[SingleInstance] " + path_ + " cannot be locked: " + describeError(code) + "\n";
    std::fputs(line.c_str(), stderr);
    return Outcome::impossible;
}

} // namespace fernwick::platform
