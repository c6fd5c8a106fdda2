// An HTTP server on loopback that answers as it is told, well or badly, whatever it is asked.
// Threads: told and asked by the test's thread; it serves each connection on a thread of its own.
#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <list>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace fernwick::fakes {

class StandInServer {
public:
    // What happens after the bytes of an answer.
    enum class End { close, reset, hold };

    struct Answer {
        std::string bytes;
        End end = End::close;
        std::chrono::milliseconds perByte{0}; // above 0: byte by byte, with that time between two
        bool forever = false;                 // the bytes again and again
    };

    struct Request {
        std::string head; // up to and with the empty line
        std::string body;
    };

    // Listens on a free port.
    StandInServer();
    StandInServer(const StandInServer&) = delete;
    StandInServer& operator=(const StandInServer&) = delete;
    // Ends all connections.
    ~StandInServer();

    // Adds an answer, for one request; the last one stays. Without any it holds the connection and says
    // nothing.
    void answer(Answer answer);

    // Adds a proper one.
    void answer(int status, const std::string& body = {});

    [[nodiscard]] std::vector<Request> requests() const;

    // How to reach it, as in "http://127.0.0.1:40000".
    [[nodiscard]] std::string base() const;

private:
    struct Connection {
        int socket = -1;
        std::thread thread;
    };

    void acceptAll();
    void serve(int socket);
    [[nodiscard]] Answer nextAnswer(Request request);
    [[nodiscard]] bool sendAnswer(int socket, const Answer& answer) const;
    [[nodiscard]] bool wait(int socket, std::chrono::milliseconds duration) const;

    int listener_ = -1;
    int stop_ = -1; // an eventfd that is readable once the server ends
    std::uint16_t port_ = 0;
    mutable std::mutex mutex_; // guards what follows
    std::deque<Answer> answers_;
    std::vector<Request> requests_;
    std::list<Connection> connections_;
    std::thread accepting_;
};

} // namespace fernwick::fakes
