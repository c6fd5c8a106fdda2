#include "routing/PACListener.h"

#include "platform/posix/StreamSockets.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <netinet/in.h>
#include <poll.h>
#include <string_view>
#include <sys/socket.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace fernwick {

namespace {

using platform::FileDescriptor;
using Clock = std::chrono::steady_clock;

// What is read of a request before it is answered.
constexpr std::size_t kRequest = 1024;

// Clients that arrive together are taken so many at a time, so that those which are there get their turn.
constexpr int kAcceptedAtOnce = 64;

// While the system has no descriptor left, a waiting client would be told again and again.
constexpr std::chrono::milliseconds kPause{100};

struct Service {
    std::chrono::milliseconds patience;
    std::function<PACListener::Response()> response;
};

bool mustWait() {
    return errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR;
}

// One client: its request is received, the response sent, and whatever it still sends is read and dropped,
// since to close a socket with unread input resets the connection and may destroy the response on its way (RFC
// 9112, section 9.6).
class Connection {
public:
    Connection(FileDescriptor socket, Clock::time_point deadline)
        : socket_(std::move(socket)), deadline_(deadline) {}

    [[nodiscard]] Clock::time_point deadline() const { return deadline_; }

    // What poll(2) should wait for.
    [[nodiscard]] pollfd watched() const {
        const int sending = peerEnded_ ? POLLOUT : POLLOUT | POLLIN;
        return {socket_.get(), static_cast<short>(state_ == State::sending ? sending : POLLIN), 0};
    }

    // Goes on as far as it can without waiting. False when the connection is to be closed.
    [[nodiscard]] bool proceed(const Service& service, Clock::time_point now) {
        switch (state_) {
        case State::receiving:
            return receive(service, now);
        case State::sending:
            return drop() && send();
        case State::draining:
            return drop() && !peerEnded_;
        }
        return false;
    }

    // The time is over. Who asked for nothing gets the response all the same.
    [[nodiscard]] bool expire(const Service& service, Clock::time_point now) {
        return state_ == State::receiving && answer(service, now);
    }

private:
    enum class State { receiving, sending, draining };

    // The request is not looked at but for its end: behind a whole one nothing more is to be expected.
    bool receive(const Service& service, Clock::time_point now) {
        std::array<char, kRequest> buffer; // NOLINT(cppcoreguidelines-pro-type-member-init): recv fills it
        const auto count = recv(socket_.get(), buffer.data(), buffer.size(), 0);
        if (count < 0 && mustWait()) {
            return true;
        }
        peerEnded_ = count <= 0;
        const std::string_view request(buffer.data(), static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
        requestEnded_ =
            request.size() < kRequest && request.starts_with("GET ") && request.ends_with("\r\n\r\n");
        return answer(service, now);
    }

    bool answer(const Service& service, Clock::time_point now) {
        state_ = State::sending;
        deadline_ = now + service.patience;
        response_ = service.response();
        return send();
    }

    bool send() {
        while (sent_ < response_->size()) {
            const auto count = platform::sendLast(socket_, std::string_view(*response_).substr(sent_));
            if (count < 0) {
                return mustWait();
            }
            sent_ += static_cast<std::size_t>(count);
        }
        if (requestEnded_ || peerEnded_) {
            return false;
        }
        shutdown(socket_.get(), SHUT_WR);
        state_ = State::draining;
        return drop() && !peerEnded_;
    }

    // Drops what the client sends, at most one buffer, so that a busy one takes turns with the others. False
    // when the connection broke.
    bool drop() {
        static thread_local std::array<char, 64UL * 1024> buffer;
        if (peerEnded_) {
            return true;
        }
        const auto count = recv(socket_.get(), buffer.data(), buffer.size(), 0);
        peerEnded_ = count == 0;
        return count >= 0 || mustWait();
    }

    FileDescriptor socket_;
    Clock::time_point deadline_;
    State state_ = State::receiving;
    PACListener::Response response_;
    std::size_t sent_ = 0;
    bool requestEnded_ = false;
    bool peerEnded_ = false;
};

// An empty descriptor when the port cannot be had. Linux would let a socket without an address listen all the
// same, on a port that nobody knows (listen(2)), so it is not asked to.
FileDescriptor listenOn(std::uint16_t port) {
    auto opened = platform::openStreamSocket();
    const int on = 1;
    setsockopt(opened.get(), SOL_SOCKET, SO_REUSEADDR, &on, sizeof(on));
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    if (bind(opened.get(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0) {
        return {};
    }
    // Clients beyond that are turned away by silence, and knock again after 1, 3 and 7 seconds: with a backlog
    // of 10, some of a thousand that came at once still waited after 15.
    constexpr int kBacklog = 1024;
    listen(opened.get(), kBacklog);
    return opened;
}

} // namespace

class PACListener::Loop {
public:
    Loop(std::uint16_t port, Service service)
        : wake_(platform::openPipe()), listening_(listenOn(port)), service_(std::move(service)) {
        watched_.push_back({wake_.readEnd.get(), POLLIN, 0});
        watched_.push_back({listening_.get(), POLLIN, 0}); // without a socket, poll(2) overlooks it
    }

    void run() {
        while (wake_.readEnd) { // without, nothing could end it
            if (poll(watched_.data(), static_cast<nfds_t>(watched_.size()), timeout()) < 0) {
                continue; // by a signal
            }
            if (watched_[0].revents != 0) {
                return;
            }
            const auto now = Clock::now();
            serveConnections(now);
            acceptConnections(now);
        }
    }

    void stop() const {
        [[maybe_unused]] const auto written = write(wake_.writeEnd.get(), "", 1); // one byte always fits
    }

private:
    static constexpr std::size_t kFirst = 2; // in watched_, of the connections

    // Milliseconds until something is over; negative while nothing is under way.
    [[nodiscard]] int timeout() const {
        if (next_ == Clock::time_point::max()) {
            return -1;
        }
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(next_ - Clock::now());
        return static_cast<int>(std::max(left.count(), std::chrono::milliseconds::rep{0}));
    }

    // From the last to the first: when one goes, the last takes its place, and has had its turn.
    void serveConnections(Clock::time_point now) {
        next_ = Clock::time_point::max();
        for (auto at = connections_.size(); at-- > 0;) {
            auto& connection = connections_[at];
            auto& watched = watched_[kFirst + at];
            bool stays = watched.revents == 0 || connection.proceed(service_, now);
            if (stays && connection.deadline() <= now) {
                stays = connection.expire(service_, now);
            }
            if (stays) {
                watched = connection.watched();
                next_ = std::min(next_, connection.deadline());
            } else {
                remove(at);
            }
        }
    }

    void acceptConnections(Clock::time_point now) {
        auto& watched = watched_[1];
        const bool paused = std::exchange(watched.fd, listening_.get()) < 0;
        if (!listening_ || (watched.revents == 0 && !paused)) {
            return;
        }
        for (int count = 0; count < kAcceptedAtOnce; ++count) {
            auto socket = platform::acceptConnection(listening_);
            if (socket) {
                add(std::move(socket), now);
            } else if (mustWait()) {
                return;
            } else if (errno != ECONNABORTED) {
                watched_[1].fd = -1;
                next_ = std::min(next_, now + kPause);
                return;
            }
        }
    }

    // Most clients have sent their request by now, and are done with at once.
    void add(FileDescriptor socket, Clock::time_point now) {
        Connection connection(std::move(socket), now + service_.patience);
        if (!connection.proceed(service_, now)) {
            return;
        }
        if (connections_.size() == kMostConnections) {
            makeRoom(now);
        }
        next_ = std::min(next_, connection.deadline());
        watched_.push_back(connection.watched());
        connections_.push_back(std::move(connection));
    }

    void makeRoom(Clock::time_point now) {
        const auto oldest = std::ranges::min_element(connections_, {}, &Connection::deadline);
        [[maybe_unused]] const bool stays = oldest->expire(service_, now);
        remove(static_cast<std::size_t>(oldest - connections_.begin()));
    }

    void remove(std::size_t at) {
        std::swap(connections_[at], connections_.back());
        connections_.pop_back();
        watched_[kFirst + at] = watched_.back();
        watched_.pop_back();
    }

    platform::Pipe wake_;
    FileDescriptor listening_;
    Service service_;
    std::vector<Connection> connections_;
    std::vector<pollfd> watched_; // the pipe, the listening socket, then one for each connection
    Clock::time_point next_ = Clock::time_point::max(); // when the first of them is out of time
};

PACListener::PACListener(std::uint16_t port, std::chrono::milliseconds patience,
                         std::function<Response()> response)
    : loop_(std::make_unique<Loop>(port, Service{patience, std::move(response)})) {}

PACListener::~PACListener() = default;

void PACListener::serve() {
    loop_->run();
}

void PACListener::stop() {
    loop_->stop();
}

} // namespace fernwick
