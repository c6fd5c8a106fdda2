// A dispatch under a test's command: time is virtual and nothing runs until the test says so. The order is
// always the same: main queue first, then background work by urgency and age, then the serial queues. Threads:
// work may be queued from any thread; everything runs on the thread that pumps, the test's.
#pragma once

#include "platform/Dispatch.h"

#include <cstddef>
#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace fernwick::fakes {

class FakeDispatch final : public platform::Dispatch {
public:
    using Duration = platform::Duration;
    using Work = platform::Work;

    // One call of a queueing operation, for tests that look at where work went.
    struct Record {
        enum class Kind { main, mainAfter, global, globalAfter } kind;
        platform::Priority priority = platform::Priority::normal; // of background work
        Duration delay{0};

        bool operator==(const Record&) const = default;
    };

    FakeDispatch();
    FakeDispatch(const FakeDispatch&) = delete;
    FakeDispatch& operator=(const FakeDispatch&) = delete;
    ~FakeDispatch() override;

    void main(Work work) override;
    void mainAfter(Duration delay, Work work) override;
    void global(platform::Priority priority, Work work) override;
    void globalAfter(platform::Priority priority, Duration delay, Work work) override;
    [[nodiscard]] std::unique_ptr<platform::SerialQueue> serialQueue(std::string_view label) override;
    [[nodiscard]] std::unique_ptr<platform::Timer> repeatingTimer(Duration interval, Work work) override;
    [[nodiscard]] std::unique_ptr<platform::Timer> oneShotTimer(Duration delay, Work work) override;

    // Runs the main queue, and what that queues on it, until it is empty. Returns how much work ran.
    std::size_t runMain();

    // Runs the background work that is ready now, but nothing that it queues. Returns how much work ran.
    std::size_t runGlobal();

    // Runs the work that the serial queues hold now. Returns how much work ran.
    std::size_t runSerial();

    // Runs everything that is ready, and what that makes ready, without letting time pass.
    void runAll();

    // Lets time pass. Stops at each moment at which something falls due and runs everything that is ready
    // there.
    void advance(Duration duration);

    // Lets time pass in the middle of a piece of work, as a thread that sleeps does. What falls due runs later.
    void pass(Duration duration);

    // While held, runAll and advance leave background work alone; runGlobal still runs it.
    void holdGlobal(bool held) { globalHeld_ = held; }

    // Virtual time since the dispatch was made.
    [[nodiscard]] Duration elapsed() const;

    // Timer objects that can still fire.
    [[nodiscard]] std::size_t pendingTimers() const;

    // Work of mainAfter and globalAfter whose time has not come.
    [[nodiscard]] std::size_t pendingDelayed() const;

    // Work on the main queue, in the background and on the serial queues that is ready and has not run.
    [[nodiscard]] std::size_t queuedMain() const;
    [[nodiscard]] std::size_t queuedGlobal() const;
    [[nodiscard]] std::size_t queuedSerial() const;

    // The labels of all serial queues that were made.
    [[nodiscard]] std::vector<std::string> serialLabels() const;

    // Every call of main, mainAfter, global and globalAfter so far.
    [[nodiscard]] std::vector<Record> records() const;

private:
    class FakeTimer;
    class FakeSerialQueue;
    struct Core; // shared with timers and queues, which may outlive the dispatch

    std::unique_ptr<platform::Timer> makeTimer(Duration delay, std::optional<Duration> interval, Work work);

    std::shared_ptr<Core> core_;
    bool globalHeld_ = false;
};

} // namespace fernwick::fakes
