#include "support/LocalTime.h"

#include <fmt/format.h>

#include <cmath>
#include <ctime>

namespace fernwick::support {

std::string localTimeText(Date date) {
    const auto seconds = static_cast<std::time_t>(std::floor(date.secondsSinceUnixEpoch()));
    std::tm parts{};
    localtime_r(&seconds, &parts); // POSIX; the standard's own is no good for threads
    return fmt::format("{:02}:{:02}:{:02}", parts.tm_hour, parts.tm_min, parts.tm_sec);
}

} // namespace fernwick::support
