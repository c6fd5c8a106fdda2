#include "platform/posix/SystemClock.h"

#include <thread>

namespace fernwick::platform {

support::Date SystemClock::now() const {
    return support::Date::fromSystem(std::chrono::system_clock::now());
}

std::chrono::nanoseconds SystemClock::uptime() const {
    return std::chrono::steady_clock::now().time_since_epoch();
}

void SystemClock::sleep(std::chrono::milliseconds duration) const {
    std::this_thread::sleep_for(duration);
}

} // namespace fernwick::platform
