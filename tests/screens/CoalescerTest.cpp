// Work that is asked for more often than it is worth doing.
#include "screens/Coalescer.h"

#include "support/FakeDispatch.h"

#include <gtest/gtest.h>

#include <optional>

namespace fernwick::tests {
namespace {

using platform::Duration;

class CoalescerTest : public testing::Test {
protected:
    // Asks for the work in `count` turns of the event loop, between which `pause` passes.
    void ask(int count, Duration pause = {}) {
        for (int turn = 0; turn < count; ++turn) {
            coalescer->request();
            dispatch.runAll();
            dispatch.advance(pause);
        }
    }

    // Enough that everything that was asked for is done, and the pace is forgotten.
    void rest() { dispatch.advance(2 * Coalescer::kInterval); }

    fakes::FakeDispatch dispatch;
    int runs = 0;
    std::optional<Coalescer> coalescer{std::in_place, dispatch, [this] { ++runs; }};
};

TEST_F(CoalescerTest, ManyRequestsOfOneTurnAreOneRunAfterIt) {
    for (int request = 0; request < 100; ++request) {
        coalescer->request();
    }
    EXPECT_EQ(runs, 0);
    dispatch.runAll();
    EXPECT_EQ(runs, 1);
    rest();
    EXPECT_EQ(runs, 1);
}

TEST_F(CoalescerTest, AFewTurnsInARowAreDoneAtOnce) {
    ask(Coalescer::kRunsAtOnce);
    EXPECT_EQ(runs, Coalescer::kRunsAtOnce);
}

TEST_F(CoalescerTest, WhatIsOneTooManyIsDoneAtTheEndOfTheInterval) {
    ask(Coalescer::kRunsAtOnce + 3);
    EXPECT_EQ(runs, Coalescer::kRunsAtOnce);
    dispatch.advance(Coalescer::kInterval - Duration{1});
    EXPECT_EQ(runs, Coalescer::kRunsAtOnce);
    dispatch.advance(Duration{1});
    EXPECT_EQ(runs, Coalescer::kRunsAtOnce + 1);
}

TEST_F(CoalescerTest, AStreamIsOneRunForEachInterval) {
    constexpr Duration kPause{5};
    ask(static_cast<int>(Coalescer::kInterval / kPause), kPause);
    const int begun = runs;
    ask(static_cast<int>(10 * Coalescer::kInterval / kPause), kPause);
    EXPECT_EQ(runs - begun, 10);
}

TEST_F(CoalescerTest, HandsThatTypeAreNeverHeldUp) {
    for (int key = 0; key < 100; ++key) {
        coalescer->request();
        dispatch.runAll();
        EXPECT_EQ(runs, key + 1);
        dispatch.advance(Duration{30}); // as a key that is held down
    }
}

TEST_F(CoalescerTest, AfterARestTheNextRunIsAtOnceAndNothingBeats) {
    ask(100);
    rest();
    EXPECT_EQ(dispatch.pendingTimers() + dispatch.pendingDelayed(), 0U);
    const int before = runs;
    ask(1);
    EXPECT_EQ(runs, before + 1);
}

TEST_F(CoalescerTest, FlushRunsWhatIsHeldBackOnce) {
    ask(Coalescer::kRunsAtOnce + 1);
    coalescer->flush();
    EXPECT_EQ(runs, Coalescer::kRunsAtOnce + 1);
    coalescer->flush();
    rest();
    EXPECT_EQ(runs, Coalescer::kRunsAtOnce + 1);
}

TEST_F(CoalescerTest, NothingRunsAfterItsEnd) {
    ask(Coalescer::kRunsAtOnce + 1);
    coalescer->request();
    coalescer.reset();
    rest();
    EXPECT_EQ(runs, Coalescer::kRunsAtOnce);
}

} // namespace
} // namespace fernwick::tests
