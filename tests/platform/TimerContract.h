// What the timers of every Dispatch do, the fake one's and the real one's.
#pragma once

#include "platform/Dispatch.h"

#include <gtest/gtest.h>

#include <memory>

namespace fernwick::platform {

// `Harness` is as for DispatchContract.
template <class Harness>
class TimerContract : public testing::Test {
protected:
    Dispatch& dispatch() { return harness_.dispatch(); }

    template <class Condition>
    [[nodiscard]] bool waitUntil(Condition condition) {
        return harness_.waitUntil(condition);
    }

    Harness harness_;
};

TYPED_TEST_SUITE_P(TimerContract);

TYPED_TEST_P(TimerContract, OneShotTimerFiresOnceAndIsNoLongerPending) {
    int count = 0;
    const auto timer = this->dispatch().oneShotTimer(Duration(5), [&] { ++count; });
    EXPECT_TRUE(timer->isPending());
    EXPECT_TRUE(this->waitUntil([&] { return count > 0; }));
    EXPECT_FALSE(timer->isPending());
    bool later = false;
    this->dispatch().mainAfter(Duration(30), [&] { later = true; });
    EXPECT_TRUE(this->waitUntil([&] { return later; }));
    EXPECT_EQ(count, 1);
}

TYPED_TEST_P(TimerContract, RepeatingTimerFiresUntilItIsDestroyed) {
    int count = 0;
    auto timer = this->dispatch().repeatingTimer(Duration(5), [&] { ++count; });
    EXPECT_TRUE(this->waitUntil([&] { return count >= 3; }));
    EXPECT_TRUE(timer->isPending());
    timer.reset();
    const int before = count;
    bool later = false;
    this->dispatch().mainAfter(Duration(30), [&] { later = true; });
    EXPECT_TRUE(this->waitUntil([&] { return later; }));
    EXPECT_EQ(count, before);
}

TYPED_TEST_P(TimerContract, TimerMayDestroyItselfWhileItFires) {
    int count = 0;
    std::unique_ptr<Timer> timer;
    timer = this->dispatch().repeatingTimer(Duration(5), [&] {
        timer.reset();
        ++count;
    });
    bool later = false;
    this->dispatch().mainAfter(Duration(40), [&] { later = true; });
    EXPECT_TRUE(this->waitUntil([&] { return later; }));
    EXPECT_EQ(count, 1);
}

TYPED_TEST_P(TimerContract, CancelledTimerLetsGoOfWhatItHolds) {
    const auto held = std::make_shared<int>(0);
    auto timer = this->dispatch().oneShotTimer(Duration(60'000), [held] { ++*held; });
    EXPECT_EQ(held.use_count(), 2);
    timer.reset();
    EXPECT_EQ(held.use_count(), 1);
}

REGISTER_TYPED_TEST_SUITE_P(TimerContract, OneShotTimerFiresOnceAndIsNoLongerPending,
                            RepeatingTimerFiresUntilItIsDestroyed, TimerMayDestroyItselfWhileItFires,
                            CancelledTimerLetsGoOfWhatItHolds);

} // namespace fernwick::platform
