#include "platform/posix/Pipe.h"

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace fernwick::platform {

FileDescriptor aboveStandard(FileDescriptor descriptor) {
    if (!descriptor || descriptor.get() > STDERR_FILENO) {
        return descriptor;
    }
    return FileDescriptor(fcntl(descriptor.get(), F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
}

std::expected<Pipe, int> makePipe() {
    int ends[2] = {-1, -1};
    if (pipe2(ends, O_CLOEXEC) != 0) {
        return std::unexpected(errno);
    }
    Pipe pipe{aboveStandard(FileDescriptor(ends[0])), aboveStandard(FileDescriptor(ends[1]))};
    if (!pipe.readEnd || !pipe.writeEnd) {
        return std::unexpected(errno);
    }
    return pipe;
}

} // namespace fernwick::platform
