// Operations on a process by its descriptor, which stays true when the process id is used anew (pidfd_open(2)).
// Threads: any.
#pragma once

#include "platform/posix/FileDescriptor.h"

#include <chrono>

namespace fernwick::platform {

// The descriptor of a process; nothing open, and errno set, when there is none to be had.
[[nodiscard]] FileDescriptor openProcess(int pid);

// Whether poll(2) has something to read there now.
[[nodiscard]] bool hasEvent(const FileDescriptor& descriptor);

// Whether the process has ended, reaped or not.
[[nodiscard]] bool hasEnded(const FileDescriptor& process);

// Waits for the end of any process, a child of ours or not. False when it lives longer than that.
[[nodiscard]] bool awaitEnd(const FileDescriptor& process, std::chrono::milliseconds limit);

// Sends a signal; nothing happens when the process is gone. False when we may not: a program of ours that
// became another user's.
bool signalProcess(const FileDescriptor& process, int signal);

// Waits for the end of a child of ours and reaps it: its exit status, or the number of the signal that ended
// it.
[[nodiscard]] int reapProcess(const FileDescriptor& process);

} // namespace fernwick::platform
