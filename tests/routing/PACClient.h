// A client of the PAC server that does as it is told, on a bare socket.
#pragma once

#include "support/WaitUntil.h"

#include <algorithm>
#include <arpa/inet.h>
#include <array>
#include <cerrno>
#include <cstdint>
#include <netinet/in.h>
#include <poll.h>
#include <string>
#include <string_view>
#include <sys/socket.h>
#include <unistd.h>
#include <utility>

namespace fernwick {

inline sockaddr_in loopback(std::uint16_t port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}

// A listening socket of somebody else. Tests' own ports are below those that the system gives to clients.
class Occupant {
public:
    explicit Occupant(std::uint16_t port) : socket_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        const auto address = loopback(port);
        const int on = 1;
        setsockopt(socket_, SOL_SOCKET, SO_REUSEADDR, &on, sizeof(on));
        free_ = bind(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) == 0 &&
                listen(socket_, 1) == 0;
    }
    Occupant(const Occupant&) = delete;
    Occupant& operator=(const Occupant&) = delete;
    ~Occupant() { close(socket_); }

    [[nodiscard]] bool wasFree() const { return free_; }

private:
    int socket_;
    bool free_ = false;
};

inline std::uint16_t freePort() {
    static std::uint16_t next = static_cast<std::uint16_t>(12000 + getpid() * 13 % 19000);
    while (!Occupant(++next).wasFree()) {
    }
    return next;
}

class PACClient {
public:
    // A small receive buffer makes a client that soon holds the server up.
    explicit PACClient(int receiveBuffer = 0)
        : socket_(socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0)) {
        if (receiveBuffer > 0) {
            setsockopt(socket_, SOL_SOCKET, SO_RCVBUF, &receiveBuffer, sizeof(receiveBuffer));
        }
    }
    explicit PACClient(std::uint16_t port, int receiveBuffer = 0) : PACClient(receiveBuffer) {
        connectTo(port);
    }
    PACClient(PACClient&& other) noexcept
        : socket_(std::exchange(other.socket_, -1)), received_(std::move(other.received_)) {}
    PACClient& operator=(PACClient&&) = delete;
    ~PACClient() {
        if (socket_ >= 0) {
            close(socket_);
        }
    }

    // Begins to connect.
    void connectTo(std::uint16_t port) const {
        const auto address = loopback(port);
        connect(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof(address));
    }

    // Whether the connection stands. Waits for it.
    [[nodiscard]] bool connected() const {
        pollfd watched{socket_, POLLOUT, 0};
        int error = 0;
        socklen_t size = sizeof(error);
        return poll(&watched, 1, 20'000) == 1 &&
               getsockopt(socket_, SOL_SOCKET, SO_ERROR, &error, &size) == 0 && error == 0;
    }

    // Sends all of it, unless the other side is gone before.
    void send(std::string_view bytes) {
        while (!bytes.empty() && !broken_) {
            const auto count = connected() ? ::send(socket_, bytes.data(), bytes.size(), MSG_NOSIGNAL) : -1;
            broken_ = count < 0 && errno != EAGAIN;
            bytes.remove_prefix(static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
        }
    }

    // Says that nothing more will be sent.
    void endSending() const { shutdown(socket_, SHUT_WR); }

    // Ends the connection at once and rudely.
    void reset() {
        const linger now{1, 0};
        setsockopt(socket_, SOL_SOCKET, SO_LINGER, &now, sizeof(now));
        close(std::exchange(socket_, -1));
    }

    // Takes what is there. False once the other side has ended.
    bool receiveSome() {
        std::array<char, 65536> buffer; // NOLINT(cppcoreguidelines-pro-type-member-init)
        const auto count = recv(socket_, buffer.data(), buffer.size(), 0);
        if (count < 0) {
            broken_ = broken_ || errno != EAGAIN;
            return errno == EAGAIN;
        }
        received_.append(buffer.data(), static_cast<std::size_t>(count));
        return count > 0;
    }

    // Whether anything was received yet.
    [[nodiscard]] bool begun() const { return !received_.empty(); }

    // Waits for the first bytes.
    [[nodiscard]] bool waitForFirst() {
        return fakes::waitUntil([this] { receiveSome(); }, [this] { return begun(); });
    }

    // Everything until the other side ends.
    std::string receiveAll() {
        if (!fakes::waitUntil([this] { return !receiveSome(); })) {
            return "no end";
        }
        return received_;
    }

    // Whether the connection was reset rather than ended.
    [[nodiscard]] bool broken() const { return broken_; }

private:
    int socket_;
    std::string received_;
    bool broken_ = false;
};

} // namespace fernwick
