// Child processes that the application starts and watches.
#pragma once

#include <expected>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace fernwick::platform {

using Environment = std::map<std::string, std::string, std::less<>>;

// The two signals that the application sends by number (signal(7)).
inline constexpr int kSignalTerminate = 15;
inline constexpr int kSignalKill = 9;

struct LaunchError {
    int code = 0;            // the system's error number
    std::string description; // what a person reads, e.g. "No such file or directory"
};

// What to run. Nothing is quoted or interpreted: each argument reaches the child as one argument.
struct ProcessRequest {
    std::string executable; // absolute path
    std::vector<std::string> arguments;
    Environment environment;        // the child's whole environment
    std::string workingFolder = {}; // absolute; empty: the application's own
    bool discardsOutput = false;    // standard output is the null device, as more may come than a pipe holds
};

// What is told while a child runs. Both are called on a queue of the backend's own, one call at a time.
struct ProcessHandlers {
    // The bytes that standard error held when it was looked at; never empty. The pipe is read again only after
    // the main queue has passed what this call queued there, so a flood cannot pile up in memory.
    std::function<void(std::string bytes)> standardError;

    // The child's end, told exactly once and after its last standard error. `status` is the exit status, or the
    // number of the signal that ended the child.
    std::function<void(int status)> exit;
};

// One child process. Start it once; it reports its end exactly once. Standard input is the null device;
// standard output is a pipe that is never read, unless it is discarded. The child inherits no other descriptor,
// has no terminal to ask on, and does not outlive the application; what it started itself is asked to end with
// it, unless that went into a session of its own. Threads: made and launched on the main thread; the other
// operations may be called from any thread.
class ChildProcess {
public:
    // Destroying the handle neither stops the child nor waits for it; its handlers are still called.
    virtual ~ChildProcess() = default;

    // Starts the program. Fails when it cannot be executed; then no handler is ever called.
    [[nodiscard]] virtual std::expected<void, LaunchError> launch(ProcessRequest request,
                                                                  ProcessHandlers handlers) = 0;

    // The process id; 0 before a successful launch. Kept after the child's end.
    [[nodiscard]] virtual int pid() const = 0;

    // Whether the child was launched and has not ended.
    [[nodiscard]] virtual bool isRunning() const = 0;

    // Asks the child to end (SIGTERM). Does nothing before the launch and after the end.
    virtual void terminate() = 0;
};

// Processes of the system: our children, and signals to any.
class Processes {
public:
    virtual ~Processes() = default;

    // A child that is not started yet.
    [[nodiscard]] virtual std::shared_ptr<ChildProcess> makeChild() = 0;

    // Sends a signal to a process id; a failure (no such process, not ours) has no consequence for anyone, and
    // is dropped.
    virtual void sendSignal(int pid, int signal) = 0;

    // Holds a process still until it is killed (SIGSTOP, whose number is not the same everywhere); failures as
    // above.
    virtual void suspend(int pid) = 0;
};

} // namespace fernwick::platform
