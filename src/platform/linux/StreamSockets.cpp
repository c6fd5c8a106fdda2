#include "platform/posix/StreamSockets.h"

#include <fcntl.h>
#include <sys/socket.h>

namespace fernwick::platform {

FileDescriptor openStreamSocket() {
    return FileDescriptor(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
}

FileDescriptor acceptConnection(const FileDescriptor& listening) {
    return FileDescriptor(accept4(listening.get(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
}

Pipe openPipe() {
    int ends[2] = {-1, -1};
    if (pipe2(ends, O_CLOEXEC | O_NONBLOCK) != 0) {
        return {};
    }
    return {FileDescriptor(ends[0]), FileDescriptor(ends[1])};
}

ssize_t sendLast(const FileDescriptor& socket, std::string_view bytes) {
    return send(socket.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_MORE);
}

} // namespace fernwick::platform
