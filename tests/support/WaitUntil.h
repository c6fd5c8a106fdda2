// Waiting for what other threads and processes do, without a fixed sleep.
#pragma once

#include <chrono>
#include <thread>

namespace fernwick::fakes {

// Calls `pump` until `reached` holds. False when it does not within the limit, which is generous: a test that
// passes never waits for it.
template <class Pump, class Reached>
[[nodiscard]] bool waitUntil(Pump pump, Reached reached,
                             std::chrono::seconds limit = std::chrono::seconds(20)) {
    const auto deadline = std::chrono::steady_clock::now() + limit;
    while (true) {
        pump();
        if (reached()) {
            return true;
        }
        if (std::chrono::steady_clock::now() > deadline) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::microseconds(200));
    }
}

template <class Reached>
[[nodiscard]] bool waitUntil(Reached reached) {
    return waitUntil([] {}, reached);
}

// Whether `holds` stays true for as long; for what must not happen.
template <class Holds>
[[nodiscard]] bool staysTrue(Holds holds, std::chrono::milliseconds duration = std::chrono::milliseconds(50)) {
    const auto end = std::chrono::steady_clock::now() + duration;
    while (std::chrono::steady_clock::now() < end) {
        if (!holds()) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::microseconds(200));
    }
    return true;
}

} // namespace fernwick::fakes
