// Requests from outside to end: SIGTERM, SIGINT and SIGHUP.
// Threads: made and destroyed on the main thread, early, and at most one at a time, since handlers of signals
// belong to the whole process.
#pragma once

#include "platform/Dispatch.h"
#include "platform/posix/FileDescriptor.h"

#include <csignal>
#include <functional>
#include <thread>
#include <utility>
#include <vector>

namespace fernwick::platform {

class TerminationSignals {
public:
    // Calls `requested` on the main queue for the first of the signals. After it all three have their default
    // action again, so a second one ends a process that hangs while it shuts down. A signal that the process
    // was started with as ignored (nohup(1)) stays ignored. SIGPIPE is ignored from now on; children get its
    // default back.
    TerminationSignals(Dispatch& dispatch, std::function<void()> requested);
    TerminationSignals(const TerminationSignals&) = delete;
    TerminationSignals& operator=(const TerminationSignals&) = delete;
    // Gives the three signals back what they did before.
    ~TerminationSignals();

private:
    FileDescriptor writeEnd_; // written by the handler, and closed to end the thread
    std::vector<std::pair<int, struct sigaction>> before_;
    std::thread waiter_;
};

} // namespace fernwick::platform
