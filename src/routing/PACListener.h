// The sockets of the PAC server: one answer for whoever connects, whatever was asked. All connections are
// served by the one thread that calls `serve`, which never waits for any of them: it goes on with those that
// are ready (poll(2)). So a thousand silent clients cost a thousand descriptors at the most, and no thread.
// Threads: made and destroyed on one thread; `stop` may be called on any.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace fernwick {

class PACListener {
public:
    // The bytes of the whole response. Connections that are under way keep the one that they began with.
    using Response = std::shared_ptr<const std::string>;

    // How many connections are open at a time. When one more comes, that which has waited longest is closed,
    // with the response when it has none yet. The application needs its descriptors for its children and files.
    static constexpr std::size_t kMostConnections = 256;

    // Listens on that port of all addresses. When that fails (the port is taken, no descriptor is left), nobody
    // is told, and nothing is served. `patience` bounds how long a request is waited for, and then how long the
    // response may take; `response` is asked on the serving thread, once for each connection.
    PACListener(std::uint16_t port, std::chrono::milliseconds patience, std::function<Response()> response);
    PACListener(const PACListener&) = delete;
    PACListener& operator=(const PACListener&) = delete;
    // `serve` must have returned.
    ~PACListener();

    // Serves until it is told to stop.
    void serve();

    // Makes `serve` return soon, also when it is called later. Connections that are open are closed.
    void stop();

private:
    class Loop;

    std::unique_ptr<Loop> loop_;
};

} // namespace fernwick
