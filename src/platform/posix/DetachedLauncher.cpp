#include "platform/posix/DetachedLauncher.h"

#include "platform/linux/ChildGuard.h"
#include "platform/posix/ExecWords.h"
#include "platform/posix/Pipe.h"
#include "platform/posix/SystemError.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace fernwick::platform {

namespace {

// All that the program needs, prepared beforehand: between fork and exec only system calls are made, since
// another thread may have held a lock when the process was copied.
struct Plan {
    const char* executable = nullptr;
    char* const* arguments = nullptr;
    int input = -1;
    int output = -1;
    int report = -1; // takes the process id, or the negative error number of what failed; closed by exec
};

void tell(const Plan& plan, int number) noexcept {
    // Nobody reads it if the application is gone, and then nobody needs it.
    [[maybe_unused]] const auto written = write(plan.report, &number, sizeof number);
}

[[noreturn]] void becomeProgram(const Plan& plan) noexcept {
    resetSignals();
    if (chdir("/") == 0 && dup2(plan.input, STDIN_FILENO) >= 0 && dup2(plan.output, STDOUT_FILENO) >= 0 &&
        dup2(plan.output, STDERR_FILENO) >= 0) {
        closeOthersOnExec();
        execve(plan.executable, plan.arguments, environ);
    }
    tell(plan, -errno);
    _exit(127);
}

// The process between: it makes the session and the program's process, and ends, which gives the program away.
[[noreturn]] void detach(const Plan& plan) noexcept {
    setsid();
    const pid_t pid = _Fork();
    if (pid == 0) {
        becomeProgram(plan);
    }
    tell(plan, pid > 0 ? pid : -errno);
    _exit(0);
}

// Makes the process between. No signal handler of ours can run in it.
pid_t makeDetacher(const Plan& plan) {
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    const pid_t pid = _Fork();
    if (pid == 0) {
        detach(plan);
    }
    const int code = errno;
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    errno = code;
    return pid;
}

FileDescriptor openOutput(const std::string& path) {
    // Not blocking, since a named pipe would otherwise wait for a reader.
    FileDescriptor file(
        open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, 0644));
    struct stat found = {};
    if (file && fstat(file.get(), &found) == 0 && S_ISREG(found.st_mode) && found.st_uid == geteuid() &&
        found.st_nlink == 1) {
        return aboveStandard(std::move(file));
    }
    return aboveStandard(FileDescriptor(open("/dev/null", O_WRONLY | O_CLOEXEC)));
}

// Reads both processes' words until the program has taken the place of the second: its id, or the error.
std::expected<int, int> readReport(Pipe& report) {
    report.writeEnd.reset();
    int pid = 0;
    int code = 0;
    int number = 0;
    ssize_t count = 0;
    while ((count = read(report.readEnd.get(), &number, sizeof number)) != 0) {
        if (count == sizeof number) {
            (number > 0 ? pid : code) = number;
        } else if (errno != EINTR) {
            break;
        }
    }
    if (code < 0 || pid == 0) {
        return std::unexpected(code < 0 ? -code : EIO);
    }
    return pid;
}

std::expected<int, int> launch(const Plan& plan, Pipe& report) {
    const pid_t detacher = makeDetacher(plan);
    if (detacher < 0) {
        return std::unexpected(errno);
    }
    while (waitpid(detacher, nullptr, 0) < 0 && errno == EINTR) {
    }
    return readReport(report);
}

} // namespace

std::expected<int, LaunchError> launchDetached(const DetachedRequest& request) {
    const auto failed = [](int code) { return std::unexpected(LaunchError{code, describeError(code)}); };
    std::vector<std::string> words{request.executable};
    words.insert(words.end(), request.arguments.begin(), request.arguments.end());
    if (anyHasNul(words)) {
        return failed(EINVAL);
    }
    const auto input = aboveStandard(FileDescriptor(open("/dev/null", O_RDONLY | O_CLOEXEC)));
    const auto output = openOutput(request.outputFile);
    if (!input || !output) {
        return failed(errno);
    }
    auto report = makePipe();
    if (!report) {
        return failed(report.error());
    }
    const auto arguments = wordPointers(words);
    const auto pid = launch({.executable = request.executable.c_str(),
                             .arguments = arguments.data(),
                             .input = input.get(),
                             .output = output.get(),
                             .report = report->writeEnd.get()},
                            *report);
    if (!pid) {
        return failed(pid.error());
    }
    return *pid;
}

} // namespace fernwick::platform
