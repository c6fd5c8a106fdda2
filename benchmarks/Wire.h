// Ports, bytes and clocks for the benchmarks that run real tunnels.
#pragma once

#include <atomic>
#include <chrono>
#include <functional>
#include <map>
#include <string>
#include <thread>
#include <vector>

namespace fernwick {

class Stopwatch {
public:
    [[nodiscard]] double milliseconds() const {
        return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begun_).count();
    }

private:
    std::chrono::steady_clock::time_point begun_ = std::chrono::steady_clock::now();
};

// Turns the event loop until the condition holds; ends the program after half a minute without it.
void spinUntil(const std::function<bool()>& holds);

// Turns the event loop for that long. It sleeps meanwhile unless there is something to do.
void spinFor(std::chrono::milliseconds duration);

// A port of the loopback address that is free now.
int freePort();

// Whether a connection to the port of the loopback address is accepted.
bool accepts(int port);

// Waits from its making on, in a thread of its own, until a port accepts.
class Acceptance {
public:
    explicit Acceptance(int port);
    ~Acceptance() { thread_.join(); }
    Acceptance(const Acceptance&) = delete;
    Acceptance& operator=(const Acceptance&) = delete;

    // Turns the event loop until the port has accepted; the milliseconds that this took.
    [[nodiscard]] double milliseconds() const;

private:
    Stopwatch begun_;
    std::atomic<double> took_ = -1;
    std::thread thread_;
};

// Fetches that many megabytes of the site through a port, and returns megabytes per second.
double fetchRate(int port, const std::string& site, int megabytes);

// This process's own memory.
long privateKibibytes();

// How often each thread of this process has been woken so far, by its number.
std::map<std::string, long> wakeUps();

// How often the threads that live now have been woken since `before`.
long wakeUpsSince(const std::map<std::string, long>& before);

double median(std::vector<double> values);

} // namespace fernwick
