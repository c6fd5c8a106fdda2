#include "DispatchContract.h"
#include "FakeHarness.h"
#include "TimerContract.h"
#include "support/FakeClock.h"
#include "support/FakeDispatch.h"

#include <chrono>

namespace fernwick::platform {

INSTANTIATE_TYPED_TEST_SUITE_P(Fake, DispatchContract, FakeHarness);
INSTANTIATE_TYPED_TEST_SUITE_P(Fake, TimerContract, FakeHarness);

using namespace std::chrono_literals;

TEST(FakeDispatch, AdvanceStopsAtEachDueTime) {
    fakes::FakeDispatch dispatch;
    std::vector<Duration> times;
    const auto timer = dispatch.repeatingTimer(5s, [&] { times.push_back(dispatch.elapsed()); });
    dispatch.mainAfter(7s, [&] { times.push_back(dispatch.elapsed()); });
    dispatch.advance(12s);
    EXPECT_EQ(times, (std::vector<Duration>{5s, 7s, 10s}));
    EXPECT_EQ(dispatch.elapsed(), 12s);
    EXPECT_EQ(dispatch.pendingTimers(), 1U);
    EXPECT_EQ(dispatch.pendingDelayed(), 0U);
}

TEST(FakeDispatch, HeldBackgroundWorkWaitsForItsPump) {
    fakes::FakeDispatch dispatch;
    std::string order;
    dispatch.holdGlobal(true);
    dispatch.global(Priority::background, [&] { order += 'b'; });
    dispatch.global(Priority::userInitiated, [&] { order += 'u'; });
    dispatch.advance(1s);
    EXPECT_EQ(order, "");
    EXPECT_EQ(dispatch.runGlobal(), 2U);
    EXPECT_EQ(order, "ub");
}

TEST(FakeClock, FollowsVirtualTime) {
    fakes::FakeDispatch dispatch;
    fakes::FakeClock clock(dispatch);
    const auto start = clock.now();
    dispatch.advance(1500ms);
    EXPECT_DOUBLE_EQ(clock.now().secondsSinceReference - start.secondsSinceReference, 1.5);
    EXPECT_EQ(clock.uptime(), 1500ms);
    clock.setNow({1000.0});
    dispatch.advance(1s);
    EXPECT_DOUBLE_EQ(clock.now().secondsSinceReference, 1001.0);
}

} // namespace fernwick::platform
