// Clocks that go with a FakeDispatch's virtual time.
#pragma once

#include "platform/Clock.h"
#include "support/FakeDispatch.h"

namespace fernwick::fakes {

class FakeClock final : public platform::Clock {
public:
    // The wall clock starts at 2026-01-01T00:00:00Z. The dispatch outlives the clock.
    explicit FakeClock(FakeDispatch& dispatch) : dispatch_(dispatch) {}

    [[nodiscard]] support::Date now() const override {
        const std::chrono::duration<double> elapsed = dispatch_.elapsed();
        return {wallStart_.secondsSinceReference + elapsed.count()};
    }
    [[nodiscard]] std::chrono::nanoseconds uptime() const override { return dispatch_.elapsed(); }

    // Lets the time pass at once; nothing else runs meanwhile.
    void sleep(std::chrono::milliseconds duration) const override { dispatch_.pass(duration); }

    // Makes the wall clock show `date` now, as if the user had set it.
    void setNow(support::Date date) {
        const std::chrono::duration<double> elapsed = dispatch_.elapsed();
        wallStart_ = {date.secondsSinceReference - elapsed.count()};
    }

private:
    FakeDispatch& dispatch_;
    support::Date wallStart_{788918400.0};
};

} // namespace fernwick::fakes
