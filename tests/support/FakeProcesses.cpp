#include "support/FakeProcesses.h"

#include <algorithm>
#include <cerrno>

namespace fernwick::fakes {

using platform::LaunchError;

namespace {

bool hasNul(const platform::ProcessRequest& request) {
    const auto bad = [](const std::string& text) { return text.contains('\0'); };
    return bad(request.executable) || std::ranges::any_of(request.arguments, bad) ||
           std::ranges::any_of(request.environment,
                               [&](const auto& entry) { return bad(entry.first) || bad(entry.second); });
}

} // namespace

std::expected<void, LaunchError> FakeChildProcess::launch(platform::ProcessRequest request,
                                                          platform::ProcessHandlers handlers) {
    if (hasNul(request)) {
        return std::unexpected(LaunchError{EINVAL, "Invalid argument"});
    }
    if (!processes_.launchErrors_.empty()) {
        auto error = std::move(processes_.launchErrors_.front());
        processes_.launchErrors_.pop_front();
        return std::unexpected(std::move(error));
    }
    request_ = std::move(request);
    handlers_ = std::move(handlers);
    pid_ = processes_.nextPid_++;
    running_ = true;
    processes_.launched_.push_back(shared_from_this());
    return {};
}

void FakeChildProcess::terminate() {
    if (!running_) {
        return;
    }
    ++terminations_;
    processes_.signals_.emplace_back(pid_, SIGTERM);
    if (exitOnTerminate_ && !stopped_) {
        exitSoon(*exitOnTerminate_);
    }
}

void FakeChildProcess::exitSoon(int status) {
    processes_.dispatch_.global(platform::Priority::normal,
                                [self = shared_from_this(), status] { self->exit(status); });
}

void FakeChildProcess::exit(int status) {
    if (!running_) {
        return;
    }
    running_ = false;
    if (!unread_.empty() && handlers_.standardError) {
        handlers_.standardError(std::exchange(unread_, {}));
    }
    const auto handlers = std::exchange(handlers_, {});
    if (handlers.exit) {
        handlers.exit(status);
    }
}

void FakeChildProcess::emitStandardError(std::string_view bytes) {
    unread_ += bytes;
    if (!chunkInFlight_) {
        deliver();
    }
}

void FakeChildProcess::deliver() {
    if (unread_.empty() || !running_) {
        return;
    }
    chunkInFlight_ = true;
    if (handlers_.standardError) {
        handlers_.standardError(std::exchange(unread_, {}));
    }
    processes_.dispatch_.main([self = shared_from_this()] {
        self->chunkInFlight_ = false;
        self->deliver();
    });
}

std::shared_ptr<platform::ChildProcess> FakeProcesses::makeChild() {
    auto child = std::make_shared<FakeChildProcess>(*this);
    child->setExitOnTerminate(exitOnTerminate_);
    children_.push_back(child);
    return child;
}

void FakeProcesses::sendSignal(int pid, int signal) {
    signals_.emplace_back(pid, signal);
    const auto found = std::ranges::find_if(
        launched_, [&](const auto& child) { return child->pid() == pid && child->isRunning(); });
    if (found == launched_.end()) {
        return;
    }
    if (signal == SIGKILL) {
        (*found)->exitSoon(SIGKILL);
    } else if (signal == SIGSTOP) {
        (*found)->stopped_ = true;
    } else if (signal == SIGTERM && (*found)->exitOnTerminate_) {
        (*found)->exitSoon(*(*found)->exitOnTerminate_);
    }
}

std::size_t FakeProcesses::runningCount() const {
    return static_cast<std::size_t>(std::ranges::count_if(launched_, &FakeChildProcess::isRunning));
}

} // namespace fernwick::fakes
