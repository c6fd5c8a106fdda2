// The two clocks of the application. Nothing else reads the time.
// Threads: any.
#pragma once

#include "support/Date.h"

#include <chrono>

namespace fernwick::platform {

class Clock {
public:
    virtual ~Clock() = default;

    // The wall clock; it may jump when the user sets it.
    [[nodiscard]] virtual support::Date now() const = 0;

    // Time since some fixed point, never going back; for measuring how long something took.
    [[nodiscard]] virtual std::chrono::nanoseconds uptime() const = 0;

    // Holds the calling thread for that long.
    virtual void sleep(std::chrono::milliseconds duration) const = 0;
};

} // namespace fernwick::platform
