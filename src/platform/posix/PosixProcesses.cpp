#include "platform/posix/PosixProcesses.h"

#include "platform/posix/SystemError.h"

#include <cerrno>
#include <csignal>

namespace fernwick::platform {

std::expected<void, LaunchError> PosixChildProcess::launch(ProcessRequest request, ProcessHandlers handlers) {
    const auto reactor = reactor_.lock();
    if (!reactor || running()) {
        // The application is ending, or the child was started before.
        const int code = reactor ? EBUSY : ECANCELED;
        return std::unexpected(LaunchError{code, describeError(code)});
    }
    auto launched = launcher_.launch(
        request.executable, request.arguments, &request.environment, request.workingFolder,
        request.discardsOutput ? ChildOutput::nullDevice : ChildOutput::pipe, ChildSession::own);
    if (!launched) {
        return std::unexpected(std::move(launched.error()));
    }
    auto child = std::make_shared<RunningChild>(std::move(*launched), std::move(handlers));
    {
        const std::lock_guard lock(mutex_);
        running_ = child;
    }
    reactor->watch(std::move(child));
    return {};
}

int PosixChildProcess::pid() const {
    const auto child = running();
    return child ? child->pid() : 0;
}

bool PosixChildProcess::isRunning() const {
    const auto child = running();
    return child && child->isRunning();
}

void PosixChildProcess::terminate() {
    if (const auto child = running()) {
        child->terminate();
    }
}

std::shared_ptr<RunningChild> PosixChildProcess::running() const {
    const std::lock_guard lock(mutex_);
    return running_;
}

std::shared_ptr<ChildProcess> PosixProcesses::makeChild() {
    return std::make_shared<PosixChildProcess>(launcher_, reactor_);
}

void PosixProcesses::sendSignal(int pid, int signal) {
    if (pid >= 1) { // others mean groups of processes (kill(2))
        kill(pid, signal);
    }
}

void PosixProcesses::suspend(int pid) {
    sendSignal(pid, SIGSTOP);
}

} // namespace fernwick::platform
