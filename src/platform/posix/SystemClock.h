// The clocks of the system.
#pragma once

#include "platform/Clock.h"

namespace fernwick::platform {

class SystemClock final : public Clock {
public:
    [[nodiscard]] support::Date now() const override;
    [[nodiscard]] std::chrono::nanoseconds uptime() const override;
    void sleep(std::chrono::milliseconds duration) const override;
};

} // namespace fernwick::platform
