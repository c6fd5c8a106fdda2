// Pipes that a new child can be given. Threads: any.
#pragma once

#include "platform/posix/FileDescriptor.h"

#include <expected>

namespace fernwick::platform {

struct Pipe {
    FileDescriptor readEnd;
    FileDescriptor writeEnd;
};

// The same file with a number above the standard descriptors, where a child can put it into its place without
// stepping on another. Nothing open, and errno set, when none is free.
[[nodiscard]] FileDescriptor aboveStandard(FileDescriptor descriptor);

// A pipe whose ends lie above the standard descriptors and are closed by exec, or the error number.
[[nodiscard]] std::expected<Pipe, int> makePipe();

} // namespace fernwick::platform
