#include "platform/posix/TerminationSignals.h"

#include "platform/ThreadName.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace fernwick::platform {

namespace {

constexpr std::array kSignals{SIGTERM, SIGINT, SIGHUP};

// A handler can reach nothing but what is static (signal-safety(7)).
std::atomic<int> requestPipe = -1;

void request(int /*signal*/) {
    const int errorBefore = errno;
    for (const int signal : kSignals) {
        ::signal(signal, SIG_DFL);
    }
    const char byte = 1;
    [[maybe_unused]] const auto written = write(requestPipe.load(), &byte, 1); // one byte always fits
    errno = errorBefore;
}

// Waits for the handler's byte, or for the end of the pipe.
void waitForRequest(const FileDescriptor& readEnd, Dispatch& dispatch, const std::function<void()>& requested) {
    nameThisThread("signals");
    char byte = 0;
    ssize_t count = 0;
    do {
        count = read(readEnd.get(), &byte, 1);
    } while (count < 0 && errno == EINTR);
    if (count == 1) {
        dispatch.main(requested);
    }
}

} // namespace

TerminationSignals::TerminationSignals(Dispatch& dispatch, std::function<void()> requested) {
    std::signal(SIGPIPE, SIG_IGN);
    int ends[2] = {-1, -1};
    if (pipe2(ends, O_CLOEXEC) != 0) {
        return; // out of descriptors; the signals then keep their default action
    }
    writeEnd_ = FileDescriptor(ends[1]);
    requestPipe = ends[1];
    waiter_ = std::thread([readEnd = FileDescriptor(ends[0]), &dispatch, requested = std::move(requested)] {
        waitForRequest(readEnd, dispatch, requested);
    });
    struct sigaction action = {};
    action.sa_handler = request;
    action.sa_flags = SA_RESTART;
    for (const int signal : kSignals) {
        struct sigaction present = {};
        if (sigaction(signal, nullptr, &present) == 0 && present.sa_handler != SIG_IGN) {
            sigaction(signal, &action, nullptr);
            before_.emplace_back(signal, present);
        }
    }
}

TerminationSignals::~TerminationSignals() {
    for (const auto& [signal, action] : before_) {
        sigaction(signal, &action, nullptr);
    }
    requestPipe = -1;
    writeEnd_.reset();
    if (waiter_.joinable()) {
        waiter_.join();
    }
}

} // namespace fernwick::platform
