#include "DispatchContract.h"
#include "QtHarness.h"
#include "TimerContract.h"
#include "platform/qt/QtDispatch.h"

#include <QAbstractEventDispatcher>
#include <QEventLoop>
#include <QObject>
#include <QTimer>

#include <condition_variable>
#include <mutex>
#include <set>

namespace fernwick::platform {

INSTANTIATE_TYPED_TEST_SUITE_P(Qt, DispatchContract, QtHarness);
INSTANTIATE_TYPED_TEST_SUITE_P(Qt, TimerContract, QtHarness);

using namespace std::chrono_literals;

namespace {

void keepBusy(std::chrono::milliseconds duration) {
    const auto end = std::chrono::steady_clock::now() + duration;
    while (std::chrono::steady_clock::now() < end) {
    }
}

} // namespace

TEST(QtDispatch, MuchWorkLeavesTurnsToTheWindow) {
    QtHarness harness;
    int done = 0;
    for (int number = 0; number < 100; ++number) {
        harness.dispatch().main([&] {
            keepBusy(2ms);
            ++done;
        });
    }
    int doneAtTurn = -1;
    QTimer::singleShot(0, QCoreApplication::instance(), [&] { doneAtTurn = done; });
    ASSERT_TRUE(harness.waitUntil([&] { return done == 100; }));
    EXPECT_GE(doneAtTurn, 0);
    EXPECT_LT(doneAtTurn, 20);
}

TEST(QtDispatch, NothingToDoMeansNoWakeUp) {
    QtHarness harness;
    bool warm = false;
    auto cancelled = harness.dispatch().oneShotTimer(20ms, [] { keepBusy(1ms); });
    cancelled.reset();
    harness.dispatch().global(Priority::normal, [&] { harness.dispatch().main([&] { warm = true; }); });
    ASSERT_TRUE(harness.waitUntil([&] { return warm; }));
    int awakenings = 0;
    bool over = false;
    QTimer::singleShot(400ms, Qt::PreciseTimer, QCoreApplication::instance(), [&] { over = true; });
    QObject::connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::awake,
                     QCoreApplication::instance(), [&] { ++awakenings; });
    while (!over) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    EXPECT_LE(awakenings, 4); // the timer's own
}

TEST(QtDispatch, WorkQueuedBeforeTheApplicationRunsInIt) {
    QtDispatch dispatch;
    int count = 0;
    std::thread([&] { dispatch.main([&] { ++count; }); }).join();
    dispatch.mainAfter(5ms, [&] { ++count; });
    const auto timer = dispatch.oneShotTimer(10ms, [&] { ++count; });
    QtHarness harness;
    EXPECT_TRUE(harness.waitUntil([&] { return count == 3; }));
}

TEST(QtDispatch, QueuedWorkIsDroppedAtTheEnd) {
    const auto held = std::make_shared<int>(0);
    {
        QtDispatch dispatch;
        dispatch.main([held] { ++*held; });
        dispatch.mainAfter(1h, [held] { ++*held; });
        dispatch.globalAfter(Priority::normal, 1h, [held] { ++*held; });
    }
    EXPECT_EQ(held.use_count(), 1);
    EXPECT_EQ(*held, 0);
}

TEST(QtDispatch, TimerOutlivesItsDispatch) {
    std::unique_ptr<Timer> timer;
    {
        QtDispatch dispatch;
        timer = dispatch.oneShotTimer(1ms, [] {});
    }
    EXPECT_TRUE(timer->isPending());
    timer.reset();
}

TEST(QtDispatch, BlockedWorkDoesNotHoldUpOtherWork) {
    std::mutex mutex;
    std::condition_variable released;
    bool release = false;
    std::atomic<int> quick = 0;
    QtHarness harness; // waits for the blocked work when it goes
    for (int number = 0; number < 20; ++number) {
        harness.dispatch().global(Priority::userInitiated, [&] {
            std::unique_lock lock(mutex);
            released.wait(lock, [&] { return release; });
        });
    }
    harness.dispatch().global(Priority::background, [&] { ++quick; });
    EXPECT_TRUE(harness.waitUntil([&] { return quick == 1; }));
    const std::lock_guard lock(mutex);
    release = true;
    released.notify_all();
}

TEST(QtDispatch, GlobalWorkRunsOffTheMainThread) {
    QtHarness harness;
    std::atomic<bool> elsewhere = false;
    const auto here = std::this_thread::get_id();
    harness.dispatch().global(Priority::normal, [&] { elsewhere = std::this_thread::get_id() != here; });
    EXPECT_TRUE(harness.waitUntil([&] { return elsewhere.load(); }));
}

TEST(QtDispatch, LateBeatsOfATimerAreNotMadeUpFor) {
    QtHarness harness;
    int beats = 0;
    const auto timer = harness.dispatch().repeatingTimer(10ms, [&] { ++beats; });
    keepBusy(200ms);
    ASSERT_TRUE(harness.waitUntil([&] { return beats > 0; }));
    QCoreApplication::processEvents();
    EXPECT_LT(beats, 5);
}

} // namespace fernwick::platform
