// Starts programs that are children of the application; DetachedLauncher starts what is not.
// Threads: any. The child is killed when the thread that launched it ends, so launch from one that stays.
#pragma once

#include "platform/ChildProcess.h"
#include "platform/posix/FileDescriptor.h"

#include <expected>
#include <string>
#include <sys/resource.h>
#include <vector>

namespace fernwick::platform {

// A child that runs its program. Whoever holds it reaps it.
struct LaunchedChild {
    int pid = 0;
    FileDescriptor process;        // a pidfd (pidfd_open(2))
    FileDescriptor standardOutput; // read ends, not blocking
    FileDescriptor standardError;
};

// Where a child's standard output goes.
enum class ChildOutput { pipe, nullDevice };

// Which session a child runs in (setsid(2)): ours, whose terminal it can ask a person on, or one of its own
// without a terminal, in which it leads a process group.
enum class ChildSession { ours, own };

class ChildLauncher {
public:
    // Raises this process's limit of open descriptors, since each child takes three. Children get the limit
    // that the process was started with. Also sees to it that ended children wait to be reaped.
    ChildLauncher();
    ChildLauncher(const ChildLauncher&) = delete;
    ChildLauncher& operator=(const ChildLauncher&) = delete;
    ~ChildLauncher() = default;

    // Returns once the program runs or could not be executed; the caller's thread waits for that. The child has
    // the null device as standard input, pipes as output (unless told otherwise) and error, every signal at its
    // default and none blocked. Without an environment, and with an empty working folder, it gets the process's
    // own.
    [[nodiscard]] std::expected<LaunchedChild, LaunchError>
    launch(const std::string& executable, const std::vector<std::string>& arguments,
           const Environment* environment, const std::string& workingFolder = {},
           ChildOutput output = ChildOutput::pipe, ChildSession session = ChildSession::ours) const;

private:
    rlimit startLimit_{}; // of open descriptors
};

} // namespace fernwick::platform
