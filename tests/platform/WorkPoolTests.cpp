#include "platform/posix/ThreadQueue.h"
#include "platform/posix/WorkPool.h"
#include "support/WaitUntil.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace fernwick::platform {

namespace {

// Work that blocks until it is released.
class Gate {
public:
    void pass() {
        std::unique_lock lock(mutex_);
        ++waiting_;
        opened_.wait(lock, [this] { return open_; });
    }
    void open() {
        const std::lock_guard lock(mutex_);
        open_ = true;
        opened_.notify_all();
    }
    [[nodiscard]] int waiting() {
        const std::lock_guard lock(mutex_);
        return waiting_;
    }

private:
    std::mutex mutex_;
    std::condition_variable opened_;
    int waiting_ = 0;
    bool open_ = false;
};

} // namespace

TEST(WorkPool, UrgentWorkStartsFirstWhenThreadsAreShort) {
    Gate gate;
    Gate lastThread;
    std::mutex mutex;
    std::string order;
    WorkPool pool;
    for (std::size_t thread = 1; thread < WorkPool::kMostThreads; ++thread) {
        pool.start(Priority::normal, [&] { gate.pass(); });
    }
    pool.start(Priority::normal, [&] { lastThread.pass(); });
    ASSERT_TRUE(fakes::waitUntil(
        [&] { return gate.waiting() + lastThread.waiting() == static_cast<int>(WorkPool::kMostThreads); }));
    const auto append = [&](char letter) {
        return [&, letter] {
            const std::lock_guard lock(mutex);
            order += letter;
        };
    };
    pool.start(Priority::background, append('d'));
    pool.start(Priority::normal, append('c'));
    pool.start(Priority::userInitiated, append('a'));
    pool.start(Priority::userInitiated, append('b'));
    lastThread.open(); // one thread is free now, and takes them one after the other
    EXPECT_TRUE(fakes::waitUntil([&] {
        const std::lock_guard lock(mutex);
        return order.size() == 4;
    }));
    EXPECT_EQ(order, "abcd");
    gate.open();
}

TEST(WorkPool, WaitingWorkIsDroppedAndRunningWorkIsWaitedFor) {
    Gate gate;
    std::atomic<int> finished = 0;
    std::atomic<int> started = 0;
    std::thread opener;
    {
        WorkPool pool;
        for (std::size_t thread = 0; thread < WorkPool::kMostThreads; ++thread) {
            pool.start(Priority::normal, [&] {
                gate.pass();
                ++finished;
            });
        }
        ASSERT_TRUE(
            fakes::waitUntil([&] { return gate.waiting() == static_cast<int>(WorkPool::kMostThreads); }));
        pool.start(Priority::userInitiated, [&] { ++started; });
        // Opens once the pool has begun to close, which shows in its refusal of work.
        opener = std::thread([&] {
            EXPECT_TRUE(fakes::waitUntil([&] {
                const auto held = std::make_shared<int>(0);
                pool.start(Priority::background, [held] {});
                return held.use_count() == 1;
            }));
            gate.open();
        });
    }
    opener.join();
    EXPECT_EQ(finished, static_cast<int>(WorkPool::kMostThreads));
    EXPECT_EQ(started, 0);
}

TEST(WorkPool, NothingIsTakenOnceItHasFinished) {
    WorkPool pool;
    std::atomic<int> done = 0;
    pool.start(Priority::normal, [&] { ++done; });
    ASSERT_TRUE(fakes::waitUntil([&] { return done == 1; }));
    pool.finish();
    const auto held = std::make_shared<int>(0);
    pool.start(Priority::userInitiated, [held, &done] { ++done; });
    EXPECT_EQ(held.use_count(), 1);
    pool.finish();
    EXPECT_EQ(done, 1);
}

TEST(WorkPool, WorkThatHangsIsNotWaitedForBeyondTheLimit) {
    Gate gate;
    WorkPool pool;
    pool.start(Priority::normal, [&] { gate.pass(); });
    ASSERT_TRUE(fakes::waitUntil([&] { return gate.waiting() == 1; }));
    EXPECT_FALSE(pool.finish(std::chrono::milliseconds(1)));
    gate.open();
    EXPECT_TRUE(pool.finish(std::chrono::seconds(20)));
}

TEST(WorkPool, ManyGiversLoseNothing) {
    std::atomic<int> count = 0;
    WorkPool pool;
    std::vector<std::thread> givers;
    givers.reserve(4);
    for (int giver = 0; giver < 4; ++giver) {
        givers.emplace_back([&] {
            for (int piece = 0; piece < 500; ++piece) {
                pool.start(Priority::normal, [&] { ++count; });
            }
        });
    }
    for (auto& giver : givers) {
        giver.join();
    }
    EXPECT_TRUE(fakes::waitUntil([&] { return count == 2000; }));
}

TEST(ThreadQueue, GiversOnManyThreadsKeepTheirOrder) {
    std::array<std::vector<int>, 4> seen; // by giver
    ThreadQueue queue("test");
    std::vector<std::thread> givers;
    givers.reserve(4);
    for (auto& list : seen) {
        givers.emplace_back([&] {
            for (int piece = 0; piece < 500; ++piece) {
                queue.async([&list, piece] { list.push_back(piece); });
            }
        });
    }
    for (auto& giver : givers) {
        giver.join();
    }
    queue.drain();
    for (const auto& list : seen) {
        EXPECT_EQ(list.size(), 500U);
        EXPECT_TRUE(std::ranges::is_sorted(list));
    }
}

TEST(ThreadQueue, WorkRunsOffTheCallersThread) {
    ThreadQueue queue("a label longer than the kernel keeps");
    auto where = std::this_thread::get_id();
    queue.async([&] { where = std::this_thread::get_id(); });
    queue.drain();
    EXPECT_NE(where, std::this_thread::get_id());
}

} // namespace fernwick::platform
