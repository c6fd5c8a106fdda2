// Stream sockets and pipes whose calls never wait, which no child inherits, and which raise no SIGPIPE. Systems
// differ in how that is asked for, so each has a source of its own for it. An empty descriptor means that the
// call failed; errno says why.
// Threads: any.
#pragma once

#include "platform/posix/FileDescriptor.h"

#include <string_view>
#include <sys/types.h>

namespace fernwick::platform {

struct Pipe {
    FileDescriptor readEnd;
    FileDescriptor writeEnd;
};

// A socket for TCP over IPv4.
[[nodiscard]] FileDescriptor openStreamSocket();

// The next connection that waits at a listening socket. EAGAIN when none does.
[[nodiscard]] FileDescriptor acceptConnection(const FileDescriptor& listening);

// Both ends are empty when it fails.
[[nodiscard]] Pipe openPipe();

// Sends what fits at this moment; returns how many bytes that were, or -1 (send(2)). For what is followed by
// the end of the connection: the last bytes may be kept back, to go in one packet with it.
[[nodiscard]] ssize_t sendLast(const FileDescriptor& socket, std::string_view bytes);

} // namespace fernwick::platform
