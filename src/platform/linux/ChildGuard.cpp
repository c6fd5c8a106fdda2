#include "platform/linux/ChildGuard.h"

#include <csignal>
#include <fcntl.h>
#include <linux/close_range.h>
#include <sys/prctl.h>
#include <unistd.h>

namespace fernwick::platform {

bool dieWithParent(int parent) noexcept {
    // The parent may have died before the request was made; the child then has another parent already.
    return prctl(PR_SET_PDEATHSIG, SIGKILL) == 0 && getppid() == parent;
}

void resetSignals() noexcept {
    struct sigaction standard = {};
    standard.sa_handler = SIG_DFL;
    for (int signal = 1; signal < NSIG; ++signal) {
        sigaction(signal, &standard, nullptr); // fails for those that cannot be changed
    }
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
}

void closeOthersOnExec() noexcept {
    if (close_range(3, ~0U, CLOSE_RANGE_CLOEXEC) == 0) {
        return;
    }
    // Kernels before 5.11, and sandboxes that refuse the call.
    const long limit = sysconf(_SC_OPEN_MAX);
    for (int number = 3; number < limit; ++number) {
        fcntl(number, F_SETFD, FD_CLOEXEC);
    }
}

} // namespace fernwick::platform
