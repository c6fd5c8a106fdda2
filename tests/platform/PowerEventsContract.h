// What every PowerEvents does, the fake one and the one on logind.
#pragma once

#include "platform/PowerEvents.h"

#include <gtest/gtest.h>

#include <string>

namespace fernwick::platform {

// `Harness` has events(), which are not started, sleep() and wake(), which let the machine do so once it
// listens, and waitUntil(condition).
template <class Harness>
class PowerEventsContract : public testing::Test {
protected:
    Harness harness_;
    std::string told_;
};

TYPED_TEST_SUITE_P(PowerEventsContract);

TYPED_TEST_P(PowerEventsContract, TellsEachSleepAndEachWakeInOrder) {
    auto& events = this->harness_.events();
    const auto sleeping = events.willSleep.connect([this] { this->told_ += "sleep "; });
    const auto waking = events.didWake.connect([this] { this->told_ += "wake "; });
    events.start();
    const std::string both = "sleep wake ";
    std::string expected;
    for (int cycle = 0; cycle < 3; ++cycle) {
        expected += both;
        this->harness_.sleep();
        this->harness_.wake();
        EXPECT_TRUE(this->harness_.waitUntil([&] { return this->told_ == expected; })) << this->told_;
    }
}

REGISTER_TYPED_TEST_SUITE_P(PowerEventsContract, TellsEachSleepAndEachWakeInOrder);

} // namespace fernwick::platform
