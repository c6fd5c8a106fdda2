// Serves the proxy auto-config script on this machine: the same HTTP response to every connection, whatever it
// asks for. Who connects can neither stall nor end the application; see PACListener.
// Threads: any for every operation. A thread of its own serves, and sleeps while nobody connects.
#pragma once

#include "routing/PACListener.h"

#include <chrono>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <thread>

namespace fernwick {

class PACServer {
public:
    static constexpr std::uint16_t kPort = 9876;

    // How long a request may take to come, and then the response to go.
    static constexpr std::chrono::seconds kPatience{5};

    // Serves a script that sends everything direct, until `update`. Other ports and times are for tests.
    explicit PACServer(std::uint16_t port = kPort, std::chrono::milliseconds patience = kPatience);
    PACServer(const PACServer&) = delete;
    PACServer& operator=(const PACServer&) = delete;
    // Stops, and waits for the thread, which ends at once.
    ~PACServer();

    // Begins to serve; nothing when it does already. A port that is taken is not noticed: then nothing is
    // served.
    void start();

    // Closes the socket and what connections there are. May be started again.
    void stop();

    // Replaces the script. Clients that are being answered get what they began with; none is waited for.
    void update(std::string_view text);

    // Where the script is found.
    [[nodiscard]] std::string pacURL() const;

private:
    void finish();
    [[nodiscard]] PACListener::Response currentPAC() const;

    std::uint16_t port_;
    std::chrono::milliseconds patience_;

    mutable std::mutex pacLock_; // guards what follows, and is held for no longer than to copy the pointer
    PACListener::Response currentPAC_; // the script with its head, ready to be sent

    std::mutex lifeLock_; // guards what follows
    std::unique_ptr<PACListener> serverSocket_;
    std::optional<std::thread> serverThread_;
};

} // namespace fernwick
