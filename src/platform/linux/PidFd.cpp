#include "platform/linux/PidFd.h"

#include <cerrno>
#include <poll.h>
#include <sys/pidfd.h>
#include <sys/wait.h>

namespace fernwick::platform {

bool hasEvent(const FileDescriptor& descriptor) {
    pollfd request{descriptor.get(), POLLIN, 0};
    return poll(&request, 1, 0) > 0;
}

bool hasEnded(const FileDescriptor& process) {
    return hasEvent(process);
}

void signalProcess(const FileDescriptor& process, int signal) {
    // The only failure that happens is that the process has ended, and then the signal has no one to reach.
    pidfd_send_signal(process.get(), signal, nullptr, 0);
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
