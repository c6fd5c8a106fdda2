// A point in time as the catalogue stores it: seconds since 2001-01-01T00:00:00Z, as a double.
#pragma once

#include <chrono>
#include <compare>

namespace fernwick::support {

struct Date {
    // Seconds between the Unix epoch and the reference date 2001-01-01T00:00:00Z.
    static constexpr double kUnixEpochOffset = 978307200.0;

    double secondsSinceReference = 0.0;

    auto operator<=>(const Date&) const = default;

    // Conversions from and to the system clock; sub-microsecond parts are not kept.
    [[nodiscard]] static Date fromSystem(std::chrono::system_clock::time_point time) {
        const std::chrono::duration<double> sinceUnix = time.time_since_epoch();
        return {sinceUnix.count() - kUnixEpochOffset};
    }
    [[nodiscard]] double secondsSinceUnixEpoch() const { return secondsSinceReference + kUnixEpochOffset; }
};

} // namespace fernwick::support
