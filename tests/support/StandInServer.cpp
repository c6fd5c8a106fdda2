#include "support/StandInServer.h"

#include <algorithm>
#include <arpa/inet.h>
#include <cstdlib>
#include <netinet/in.h>
#include <optional>
#include <poll.h>
#include <stdexcept>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>
#include <utility>

namespace fernwick::fakes {

namespace {

constexpr std::string_view kHeadEnd = "\r\n\r\n";
constexpr std::string_view kLengthField = "Content-Length: ";

// The length of the body that the head announces.
std::size_t bodyLength(const std::string& head) {
    const auto field = head.find(kLengthField);
    return field == std::string::npos
               ? 0
               : static_cast<std::size_t>(std::atoll(head.c_str() + field + kLengthField.size()));
}

// The next request; nothing when the client has gone.
std::optional<StandInServer::Request> readRequest(int socket) {
    std::string text;
    while (true) {
        if (const auto end = text.find(kHeadEnd); end != std::string::npos) {
            const auto size = end + kHeadEnd.size();
            const auto length = bodyLength(text.substr(0, size));
            if (text.size() >= size + length) {
                return StandInServer::Request{text.substr(0, size), text.substr(size, length)};
            }
        }
        char buffer[4096];
        const auto count = recv(socket, buffer, sizeof buffer, 0);
        if (count <= 0) {
            return std::nullopt;
        }
        text.append(buffer, static_cast<std::size_t>(count));
    }
}

bool sendAll(int socket, std::string_view bytes) {
    while (!bytes.empty()) {
        const auto count = send(socket, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (count <= 0) {
            return false;
        }
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
}

} // namespace

StandInServer::StandInServer()
    : listener_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)), stop_(eventfd(0, EFD_CLOEXEC)) {
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    auto* const plain = reinterpret_cast<sockaddr*>(&address);
    if (bind(listener_, plain, size) != 0 || listen(listener_, 16) != 0 ||
        getsockname(listener_, plain, &size) != 0) {
        throw std::runtime_error("no port could be had");
    }
    port_ = ntohs(address.sin_port);
    accepting_ = std::thread([this] { acceptAll(); });
}

StandInServer::~StandInServer() {
    eventfd_write(stop_, 1);
    shutdown(listener_, SHUT_RDWR);
    accepting_.join();
    for (auto& connection : connections_) {
        shutdown(connection.socket, SHUT_RDWR);
        connection.thread.join();
        close(connection.socket);
    }
    close(listener_);
    close(stop_);
}

void StandInServer::answer(Answer answer) {
    const std::lock_guard lock(mutex_);
    answers_.push_back(std::move(answer));
}

void StandInServer::answer(int status, const std::string& body) {
    std::string bytes = "HTTP/1.1 " + std::to_string(status) + " Status\r\n";
    if (status != 204) { // RFC 9110, section 8.6: such an answer tells no length
        bytes += "Content-Length: " + std::to_string(body.size()) + "\r\n";
    }
    answer(Answer{bytes + "\r\n" + body, End::hold});
}

std::vector<StandInServer::Request> StandInServer::requests() const {
    const std::lock_guard lock(mutex_);
    return requests_;
}

std::string StandInServer::base() const {
    return "http://127.0.0.1:" + std::to_string(port_);
}

void StandInServer::acceptAll() {
    while (true) {
        const int socket = accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
        if (socket < 0) {
            return;
        }
        auto& connection = connections_.emplace_back(); // looked at by others only when this thread has ended
        connection.socket = socket;
        connection.thread = std::thread([this, socket] { serve(socket); });
    }
}

// Answers one request after the other until the connection ends. The descriptor stays open for the destructor.
void StandInServer::serve(int socket) {
    while (auto request = readRequest(socket)) {
        const auto answer = nextAnswer(*std::move(request));
        if (!sendAnswer(socket, answer)) {
            break;
        }
        if (answer.end == End::reset) {
            // Closing with data that is not sent, and no time for it, resets (socket(7), SO_LINGER); as does
            // connecting it to nobody, which keeps the descriptor.
            const linger atOnce{.l_onoff = 1, .l_linger = 0};
            setsockopt(socket, SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
            sockaddr nobody = {};
            nobody.sa_family = AF_UNSPEC;
            connect(socket, &nobody, sizeof nobody);
            return;
        }
        if (answer.end == End::close) {
            break;
        }
    }
    shutdown(socket, SHUT_RDWR);
}

StandInServer::Answer StandInServer::nextAnswer(Request request) {
    const std::lock_guard lock(mutex_);
    requests_.push_back(std::move(request));
    if (answers_.empty()) {
        return {"", End::hold};
    }
    auto next = answers_.front();
    if (answers_.size() > 1) {
        answers_.pop_front();
    }
    return next;
}

bool StandInServer::sendAnswer(int socket, const Answer& answer) const {
    do {
        if (answer.perByte.count() == 0) {
            if (!sendAll(socket, answer.bytes)) {
                return false;
            }
            continue;
        }
        for (const char byte : answer.bytes) {
            if (!sendAll(socket, {&byte, 1}) || !wait(socket, answer.perByte)) {
                return false;
            }
        }
    } while (answer.forever);
    return true;
}

// Lets that time pass. False when the server ends or the client has gone meanwhile.
bool StandInServer::wait(int socket, std::chrono::milliseconds duration) const {
    pollfd watched[] = {{.fd = stop_, .events = POLLIN, .revents = 0},
                        {.fd = socket, .events = POLLRDHUP, .revents = 0}};
    return poll(watched, 2, static_cast<int>(duration.count())) == 0;
}

} // namespace fernwick::fakes
