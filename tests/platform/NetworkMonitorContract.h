// What every NetworkMonitor does, the fake one and the one on the kernel's routes.
#pragma once

#include "Statuses.h"
#include "platform/posix/ThreadQueue.h"

#include <gtest/gtest.h>

#include <optional>

namespace fernwick::platform {

// `Harness` has begin(queue, handler), which makes and starts a monitor where there is no network, connect()
// and disconnect(), which give one and take it away, and end(), which destroys the monitor.
template <class Harness>
class NetworkMonitorContract : public testing::Test {
protected:
    void begin() { harness_.begin(queue_, statuses_.handler()); }

    Statuses statuses_;
    ThreadQueue queue_{"contract"};
    Harness harness_;
};

TYPED_TEST_SUITE_P(NetworkMonitorContract);

TYPED_TEST_P(NetworkMonitorContract, TellsThePresentStatusThenEachChange) {
    using enum NetworkPathStatus;
    this->begin();
    EXPECT_TRUE(this->statuses_.become({unsatisfied}));
    this->harness_.connect();
    EXPECT_TRUE(this->statuses_.become({unsatisfied, satisfied}));
    this->harness_.disconnect();
    EXPECT_TRUE(this->statuses_.become({unsatisfied, satisfied, unsatisfied}));
}

TYPED_TEST_P(NetworkMonitorContract, TellsNothingAfterItsEnd) {
    using enum NetworkPathStatus;
    this->begin();
    ASSERT_TRUE(this->statuses_.become({unsatisfied}));
    this->harness_.end();
    this->harness_.connect();
    this->queue_.drain();
    EXPECT_TRUE(this->statuses_.stay({unsatisfied}));
}

REGISTER_TYPED_TEST_SUITE_P(NetworkMonitorContract, TellsThePresentStatusThenEachChange,
                            TellsNothingAfterItsEnd);

} // namespace fernwick::platform
