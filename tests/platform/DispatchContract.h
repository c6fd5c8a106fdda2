// What the queues of every Dispatch do, the fake one's and the real one's.
#pragma once

#include "platform/Dispatch.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <string>
#include <thread>
#include <vector>

namespace fernwick::platform {

// `Harness` has dispatch() and waitUntil(condition), which lets time pass and runs the main queue meanwhile.
template <class Harness>
class DispatchContract : public testing::Test {
protected:
    Dispatch& dispatch() { return harness_.dispatch(); }

    template <class Condition>
    [[nodiscard]] bool waitUntil(Condition condition) {
        return harness_.waitUntil(condition);
    }

    Harness harness_;
};

TYPED_TEST_SUITE_P(DispatchContract);

TYPED_TEST_P(DispatchContract, MainNeverRunsInPlaceAndKeepsOrder) {
    std::string order;
    this->dispatch().main([&] {
        order += 'a';
        this->dispatch().main([&] { order += 'c'; });
        order += 'b';
    });
    EXPECT_EQ(order, "");
    EXPECT_TRUE(this->waitUntil([&] { return order.size() == 3; }));
    EXPECT_EQ(order, "abc");
}

TYPED_TEST_P(DispatchContract, MainTakesWorkFromOtherThreadsInTheirOrder) {
    std::vector<int> seen;
    std::thread other([&] {
        for (int number = 0; number < 1000; ++number) {
            this->dispatch().main([&seen, number] { seen.push_back(number); });
        }
    });
    other.join();
    ASSERT_TRUE(this->waitUntil([&] { return seen.size() == 1000; }));
    EXPECT_TRUE(std::is_sorted(seen.begin(), seen.end()));
}

TYPED_TEST_P(DispatchContract, MainAfterKeepsTheOrderOfDueTimes) {
    std::string order;
    this->dispatch().mainAfter(Duration(30), [&] { order += 'c'; });
    this->dispatch().mainAfter(Duration(10), [&] { order += 'a'; });
    this->dispatch().mainAfter(Duration(20), [&] { order += 'b'; });
    EXPECT_TRUE(this->waitUntil([&] { return order.size() == 3; }));
    EXPECT_EQ(order, "abc");
}

TYPED_TEST_P(DispatchContract, MainAfterWithoutADelayStillRunsLater) {
    bool ran = false;
    this->dispatch().mainAfter(Duration(-5), [&] { ran = true; });
    EXPECT_FALSE(ran);
    EXPECT_TRUE(this->waitUntil([&] { return ran; }));
}

TYPED_TEST_P(DispatchContract, GlobalWorkRunsAtEveryPriority) {
    std::atomic<int> count = 0;
    for (const auto priority : {Priority::background, Priority::normal, Priority::userInitiated}) {
        this->dispatch().global(priority, [&] { ++count; });
        this->dispatch().globalAfter(priority, Duration(5), [&] { ++count; });
    }
    EXPECT_TRUE(this->waitUntil([&] { return count == 6; }));
}

TYPED_TEST_P(DispatchContract, GlobalWorkHandsItsResultToMain) {
    int result = 0;
    this->dispatch().global(Priority::normal, [&] { this->dispatch().main([&] { result = 7; }); });
    EXPECT_TRUE(this->waitUntil([&] { return result == 7; }));
}

TYPED_TEST_P(DispatchContract, SerialQueueKeepsOrderAndDrains) {
    const auto queue = this->dispatch().serialQueue("contract");
    std::vector<int> seen;
    for (int number = 0; number < 100; ++number) {
        queue->async([&seen, number] { seen.push_back(number); });
    }
    queue->drain();
    ASSERT_EQ(seen.size(), 100U);
    EXPECT_TRUE(std::is_sorted(seen.begin(), seen.end()));
}

TYPED_TEST_P(DispatchContract, SerialQueueFinishesBeforeItGoes) {
    int count = 0;
    {
        const auto queue = this->dispatch().serialQueue("contract");
        queue->drain();
        for (int number = 0; number < 10; ++number) {
            queue->async([&] { ++count; });
        }
    }
    EXPECT_EQ(count, 10);
}

REGISTER_TYPED_TEST_SUITE_P(DispatchContract, MainNeverRunsInPlaceAndKeepsOrder,
                            MainTakesWorkFromOtherThreadsInTheirOrder, MainAfterKeepsTheOrderOfDueTimes,
                            MainAfterWithoutADelayStillRunsLater, GlobalWorkRunsAtEveryPriority,
                            GlobalWorkHandsItsResultToMain, SerialQueueKeepsOrderAndDrains,
                            SerialQueueFinishesBeforeItGoes);

} // namespace fernwick::platform
