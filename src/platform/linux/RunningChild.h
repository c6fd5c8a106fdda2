// A launched child, shared by its handle and by the reactor that watches it.
// Threads: any; what only the reactor uses is marked.
#pragma once

#include "platform/ChildProcess.h"
#include "platform/posix/ChildLauncher.h"

#include <cstddef>
#include <mutex>
#include <optional>
#include <string>

namespace fernwick::platform {

class RunningChild {
public:
    RunningChild(LaunchedChild child, ProcessHandlers handlers);
    RunningChild(const RunningChild&) = delete;
    RunningChild& operator=(const RunningChild&) = delete;
    ~RunningChild() = default;

    [[nodiscard]] int pid() const { return pid_; }
    [[nodiscard]] bool isRunning() const;
    void terminate() const;

    // The rest is for the reactor alone.

    [[nodiscard]] const FileDescriptor& process() const { return process_; }
    [[nodiscard]] const FileDescriptor& standardError() const { return standardError_; }

    // Hands over what standard error holds, at most `buffer` full. False at its end or when it held nothing.
    [[nodiscard]] bool deliver(std::string& buffer);

    // Ends what the child left behind in its process group (SIGTERM), e.g. the way to a jump host on which ssh
    // waits for an answer. Not after the child was reaped, when its number may be another's.
    void endGroup() const;

    // Reaps the ended child with its group, and notes how much standard error still holds; that much is handed
    // over before the end is told, but not what a grandchild writes after it.
    void reap();
    [[nodiscard]] bool isReaped() const { return status_.has_value(); }

    // Whether some of what standard error held at the end has not been handed over.
    [[nodiscard]] bool hasUnread() const { return unread_ > 0; }

    // Tells the end, lets go of the handlers, and closes everything.
    void finish();

private:
    const int pid_;
    ProcessHandlers handlers_;
    mutable std::mutex mutex_; // guards process_ against its closing
    FileDescriptor process_;
    FileDescriptor standardOutput_; // only held open, so that writing to it is no error
    FileDescriptor standardError_;
    std::optional<int> status_;
    std::size_t unread_ = 0; // counts once the child is reaped
};

} // namespace fernwick::platform
