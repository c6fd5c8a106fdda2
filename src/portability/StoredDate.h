// Points in time in the user defaults: seconds since 1970, as a double.
// Threads: main thread only.
#pragma once

#include "platform/UserDefaults.h"
#include "support/Date.h"

#include <cmath>
#include <optional>
#include <string_view>

namespace fernwick {

// The stored point in time; nothing when there is none, or none after 1970.
[[nodiscard]] inline std::optional<support::Date> readStoredDate(const platform::UserDefaults& defaults,
                                                                 std::string_view key) {
    const auto found = defaults.value(key);
    const auto* seconds = found ? found->as<double>() : nullptr;
    return seconds != nullptr && std::isfinite(*seconds) && *seconds > 0
               ? std::optional(support::Date{*seconds - support::Date::kUnixEpochOffset})
               : std::nullopt;
}

inline void storeDate(platform::UserDefaults& defaults, std::string_view key, support::Date date) {
    defaults.set(key, {date.secondsSinceUnixEpoch()});
}

} // namespace fernwick
