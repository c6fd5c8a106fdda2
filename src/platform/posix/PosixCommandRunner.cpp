#include "platform/posix/PosixCommandRunner.h"

#include "platform/linux/PidFd.h"
#include "platform/posix/SystemError.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/ioctl.h>

namespace fernwick::platform {

namespace {

using Clock = std::chrono::steady_clock;

// One output of a command, gathered as it comes.
class Gathered {
public:
    explicit Gathered(FileDescriptor source) : source_(std::move(source)) {}

    // What poll is to look at; nothing once the stream has ended.
    [[nodiscard]] pollfd request() const { return {source_.get(), POLLIN, 0}; }

    // Reads once.
    void readSome() {
        std::array<char, 65536> buffer; // NOLINT(cppcoreguidelines-pro-type-member-init): read fills it
        const auto count = read(source_.get(), buffer.data(), buffer.size());
        if (count > 0) {
            text_.append(buffer.data(), static_cast<std::size_t>(count));
        } else if (count == 0 || (errno != EAGAIN && errno != EINTR)) {
            source_.reset();
        }
    }

    // Reads what is there now, though a grandchild may hold the stream open and go on writing.
    void readRest() {
        int held = 0;
        if (!source_ || ioctl(source_.get(), FIONREAD, &held) != 0) {
            return;
        }
        const auto goal = text_.size() + static_cast<std::size_t>(std::max(held, 0));
        while (source_ && text_.size() < goal) {
            readSome();
        }
    }

    [[nodiscard]] std::string take() { return std::move(text_); }

private:
    FileDescriptor source_;
    std::string text_;
};

// Milliseconds as poll takes them: -1 for no limit, rounded up so that the limit has passed when poll returns.
int pollTimeout(const std::optional<Clock::time_point>& deadline) {
    if (!deadline) {
        return -1;
    }
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(*deadline - Clock::now()).count();
    constexpr std::chrono::milliseconds::rep kLongest = 3'600'000; // poll is called again after that
    return static_cast<int>(std::clamp<std::chrono::milliseconds::rep>(left, 0, kLongest));
}

// Gathers both outputs until the command has ended, its time is up or everything is abandoned. True in the
// first case.
bool gather(const LaunchedChild& child, Gathered& output, Gathered& error, const FileDescriptor& abandoned,
            const std::optional<Clock::time_point>& deadline) {
    while (!deadline || Clock::now() < *deadline) {
        std::array<pollfd, 4> requests{output.request(), error.request(),
                                       pollfd{child.process.get(), POLLIN, 0},
                                       pollfd{abandoned.get(), POLLIN, 0}};
        poll(requests.data(), requests.size(), pollTimeout(deadline));
        if (requests[0].revents != 0) {
            output.readSome();
        }
        if (requests[1].revents != 0) {
            error.readSome();
        }
        if (requests[2].revents != 0) {
            return true;
        }
        if (requests[3].revents != 0) {
            return false;
        }
    }
    return false;
}

} // namespace

PosixCommandRunner::PosixCommandRunner(const ChildLauncher& launcher)
    : launcher_(launcher), abandoned_(eventfd(0, EFD_CLOEXEC)) {}

std::expected<CommandResult, LaunchError> PosixCommandRunner::run(const CommandRequest& request) {
    if (hasEvent(abandoned_)) {
        return std::unexpected(LaunchError{ECANCELED, describeError(ECANCELED)});
    }
    const auto deadline = request.timeLimit ? std::optional(Clock::now() + *request.timeLimit) : std::nullopt;
    auto child = launcher_.launch(request.executable, request.arguments,
                                  request.environment ? &*request.environment : nullptr);
    if (!child) {
        return std::unexpected(std::move(child.error()));
    }
    Gathered output(std::move(child->standardOutput));
    Gathered error(std::move(child->standardError));
    if (!gather(*child, output, error, abandoned_, deadline) && !signalProcess(child->process, SIGKILL)) {
        // It became root, as pkexec does once a person has agreed. Its end may be far, and nobody is to wait.
        return std::unexpected(LaunchError{EPERM, describeError(EPERM)});
    }
    const int status = reapProcess(child->process);
    output.readRest();
    error.readRest();
    return CommandResult{status, output.take(), error.take()};
}

void PosixCommandRunner::abandonAll() {
    eventfd_write(abandoned_.get(), 1);
}

} // namespace fernwick::platform
