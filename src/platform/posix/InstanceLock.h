// A lock file that one process of a user holds for as long as it lives. The kernel lets go of it however that
// process ends (flock(2)). Threads: main thread only.
#pragma once

#include "platform/posix/FileDescriptor.h"

#include <string>

namespace fernwick::platform {

class InstanceLock {
public:
    enum class Outcome {
        held,        // by this process, until the lock is destroyed
        heldByOther, // by another process
        impossible,  // the file cannot be made or locked; told on standard error
    };

    // Makes the folder of the lock file, if it is missing, when the lock is taken.
    explicit InstanceLock(std::string path) : path_(std::move(path)) {}

    // Tries to take the lock, without waiting.
    [[nodiscard]] Outcome take();

private:
    const std::string path_;
    FileDescriptor file_;
};

} // namespace fernwick::platform
