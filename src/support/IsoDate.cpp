#include "support/IsoDate.h"

#include <fmt/format.h>

#include <chrono>
#include <cmath>
#include <cstdint>

namespace fernwick::support {

std::string iso8601Text(Date date) {
    using namespace std::chrono;
    const sys_seconds second{seconds(static_cast<std::int64_t>(std::floor(date.secondsSinceUnixEpoch())))};
    const auto midnight = floor<days>(second);
    const year_month_day day(midnight);
    const hh_mm_ss time(second - midnight);
    return fmt::format("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}Z", static_cast<int>(day.year()),
                       static_cast<unsigned>(day.month()), static_cast<unsigned>(day.day()),
                       time.hours().count(), time.minutes().count(), time.seconds().count());
}

} // namespace fernwick::support
