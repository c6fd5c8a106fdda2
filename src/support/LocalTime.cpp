#include "support/LocalTime.h"

#include <fmt/format.h>

#include <cmath>
#include <ctime>

namespace fernwick::support {
namespace {

std::tm partsOf(Date date) {
    const auto seconds = static_cast<std::time_t>(std::floor(date.secondsSinceUnixEpoch()));
    std::tm parts{};
    localtime_r(&seconds, &parts); // POSIX; the standard's own is no good for threads
    return parts;
}

} // namespace

std::string localTimeText(Date date) {
    const auto parts = partsOf(date);
    return fmt::format("{:02}:{:02}:{:02}", parts.tm_hour, parts.tm_min, parts.tm_sec);
}

std::string localFileStamp(Date date) {
    constexpr int kFirstYear = 1900; // of the C library's calendar
    const auto parts = partsOf(date);
    return fmt::format("{:04}-{:02}-{:02}_{:02}-{:02}-{:02}", parts.tm_year + kFirstYear, parts.tm_mon + 1,
                       parts.tm_mday, parts.tm_hour, parts.tm_min, parts.tm_sec);
}

} // namespace fernwick::support
