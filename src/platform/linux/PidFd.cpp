#include "platform/linux/PidFd.h"

#include <cerrno>
#include <poll.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace fernwick::platform {

// The header of glibc 2.36 declares its functions for C only, hence the calls by number.

FileDescriptor openProcess(int pid) {
    return FileDescriptor(static_cast<int>(syscall(SYS_pidfd_open, pid, 0)));
}

bool hasEvent(const FileDescriptor& descriptor) {
    pollfd request{descriptor.get(), POLLIN, 0};
    return poll(&request, 1, 0) > 0;
}

bool hasEnded(const FileDescriptor& process) {
    return hasEvent(process);
}

bool awaitEnd(const FileDescriptor& process, std::chrono::milliseconds limit) {
    using Clock = std::chrono::steady_clock;
    const auto deadline = Clock::now() + limit;
    pollfd request{process.get(), POLLIN, 0};
    while (true) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now()).count();
        if (const int count = poll(&request, 1, static_cast<int>(left > 0 ? left : 0)); count >= 0) {
            return count > 0;
        }
        if (errno != EINTR) {
            return false;
        }
    }
}

bool signalProcess(const FileDescriptor& process, int signal) {
    return syscall(SYS_pidfd_send_signal, process.get(), signal, nullptr, 0) == 0 || errno != EPERM;
}

int reapProcess(const FileDescriptor& process) {
    siginfo_t info{};
    while (waitid(P_PIDFD, static_cast<id_t>(process.get()), &info, WEXITED) != 0) {
        if (errno != EINTR) {
            return -1; // not a child of ours
        }
    }
    return info.si_status; // for CLD_KILLED and CLD_DUMPED this is the signal
}

} // namespace fernwick::platform
