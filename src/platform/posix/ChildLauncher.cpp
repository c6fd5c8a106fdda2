#include "platform/posix/ChildLauncher.h"

#include "platform/linux/ChildGuard.h"
#include "platform/linux/PidFd.h"
#include "platform/posix/ExecWords.h"
#include "platform/posix/Pipe.h"
#include "platform/posix/SystemError.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace fernwick::platform {

namespace {

constexpr rlim_t kWantedDescriptors = 65536;

// All that the child needs, prepared beforehand: it may share our memory and must not allocate.
struct ChildPlan {
    const char* executable = nullptr;
    char* const* arguments = nullptr;
    char* const* environment = nullptr;
    const char* workingFolder = nullptr; // null: stay
    rlimit descriptorLimit{};
    int parent = 0;
    int input = -1;
    int output = -1;
    int error = -1;
    int report = -1; // where the error number of a failed exec goes
    bool ownSession = false;
};

LaunchError launchError(int code) {
    return {code, describeError(code)};
}

[[noreturn]] void becomeProgram(const ChildPlan& plan) noexcept {
    if (!dieWithParent(plan.parent)) {
        _exit(127);
    }
    resetSignals();
    if (plan.ownSession) {
        setsid();
    }
    int code = 0;
    if (dup2(plan.input, STDIN_FILENO) < 0 || dup2(plan.output, STDOUT_FILENO) < 0 ||
        dup2(plan.error, STDERR_FILENO) < 0 ||
        (plan.workingFolder != nullptr && chdir(plan.workingFolder) != 0)) {
        code = errno;
    } else {
        closeOthersOnExec();
        setrlimit(RLIMIT_NOFILE, &plan.descriptorLimit);
        execve(plan.executable, plan.arguments, plan.environment);
        code = errno;
    }
    // Nobody reads it if the parent is gone, and then nobody needs it.
    [[maybe_unused]] const auto written = write(plan.report, &code, sizeof code);
    _exit(127);
}

// Makes the child. No signal handler of ours can run in it, since none is let through until its program stands.
pid_t makeChild(const ChildPlan& plan) {
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    // The child makes system calls only, and the time of a fork would grow with our memory.
    const pid_t pid = vfork(); // NOLINT(bugprone-unsafe-functions,clang-analyzer-security.insecureAPI.vfork)
    if (pid == 0) {
        becomeProgram(plan); // NOLINT(clang-analyzer-unix.Vfork)
    }
    const int code = errno;
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    errno = code;
    return pid;
}

// The error number of a failed exec, or 0.
int awaitExec(Pipe& report) {
    report.writeEnd.reset();
    int code = 0;
    ssize_t count = 0;
    do {
        count = read(report.readEnd.get(), &code, sizeof code);
    } while (count < 0 && errno == EINTR);
    return count == sizeof code ? code : 0;
}

void reap(pid_t pid) {
    while (waitpid(pid, nullptr, 0) < 0 && errno == EINTR) {
    }
}

void setNonBlocking(const FileDescriptor& descriptor) {
    fcntl(descriptor.get(), F_SETFL, fcntl(descriptor.get(), F_GETFL) | O_NONBLOCK);
}

std::vector<std::string> environmentWords(const Environment& environment) {
    std::vector<std::string> words;
    words.reserve(environment.size());
    for (const auto& [name, value] : environment) {
        words.emplace_back(name).append("=").append(value);
    }
    return words;
}

} // namespace

ChildLauncher::ChildLauncher() {
    if (getrlimit(RLIMIT_NOFILE, &startLimit_) == 0) {
        auto raised = startLimit_;
        raised.rlim_cur = std::max(raised.rlim_cur, std::min(raised.rlim_max, kWantedDescriptors));
        setrlimit(RLIMIT_NOFILE, &raised); // where it is refused, fewer children fit
    }
    // A parent that ignored SIGCHLD would have passed that on, and exit statuses would be lost.
    struct sigaction present = {};
    if (sigaction(SIGCHLD, nullptr, &present) == 0 && present.sa_handler == SIG_IGN) {
        present.sa_handler = SIG_DFL;
        present.sa_flags = 0;
        sigaction(SIGCHLD, &present, nullptr);
    }
}

std::expected<LaunchedChild, LaunchError>
ChildLauncher::launch(const std::string& executable, const std::vector<std::string>& arguments,
                      const Environment* environment, const std::string& workingFolder, ChildOutput wanted,
                      ChildSession session) const {
    std::vector<std::string> words{executable};
    words.insert(words.end(), arguments.begin(), arguments.end());
    auto variables = environment != nullptr ? environmentWords(*environment) : std::vector<std::string>();
    if (anyHasNul(words) || anyHasNul(variables) || workingFolder.contains('\0')) {
        return std::unexpected(launchError(EINVAL));
    }
    const auto null = aboveStandard(FileDescriptor(open("/dev/null", O_RDWR | O_CLOEXEC)));
    if (!null) {
        return std::unexpected(launchError(errno));
    }
    auto output = makePipe();
    auto error = output ? makePipe() : std::unexpected(output.error());
    auto report = error ? makePipe() : std::unexpected(error.error());
    if (!report) {
        return std::unexpected(launchError(report.error()));
    }
    const auto argumentPointers = wordPointers(words);
    const auto variablePointers = wordPointers(variables);
    const pid_t pid = makeChild({.executable = executable.c_str(),
                                 .arguments = argumentPointers.data(),
                                 .environment = environment != nullptr ? variablePointers.data() : environ,
                                 .workingFolder = workingFolder.empty() ? nullptr : workingFolder.c_str(),
                                 .descriptorLimit = startLimit_,
                                 .parent = getpid(),
                                 .input = null.get(),
                                 .output = (wanted == ChildOutput::pipe ? output->writeEnd : null).get(),
                                 .error = error->writeEnd.get(),
                                 .report = report->writeEnd.get(),
                                 .ownSession = session == ChildSession::own});
    if (pid < 0) {
        return std::unexpected(launchError(errno));
    }
    if (const int code = awaitExec(*report); code != 0) {
        reap(pid);
        return std::unexpected(launchError(code));
    }
    auto process = openProcess(pid);
    if (!process) {
        const int code = errno;
        kill(pid, SIGKILL);
        reap(pid);
        return std::unexpected(launchError(code));
    }
    setNonBlocking(output->readEnd);
    setNonBlocking(error->readEnd);
    return LaunchedChild{pid, std::move(process), std::move(output->readEnd), std::move(error->readEnd)};
}

} // namespace fernwick::platform
