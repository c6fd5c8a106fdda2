// Queues and timers: every hop between threads and every wait in the application goes through here.
// Threads: each operation may be called from any thread, unless it says otherwise.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string_view>

namespace fernwick::platform {

using Work = std::move_only_function<void()>;
using Duration = std::chrono::milliseconds;

// How urgent a piece of background work is; urgent work starts first.
enum class Priority { background, normal, userInitiated };

// Runs its work one piece at a time, in the order in which it came, off the main thread.
class SerialQueue {
public:
    // Finishes what is queued before it returns.
    virtual ~SerialQueue() = default;

    // Queues the work.
    virtual void async(Work work) = 0;

    // Waits until everything queued before the call has run. Not to be called from the queue itself.
    virtual void drain() = 0;
};

// A running timer. Destroying it on the main thread cancels it; the work is then never called again.
class Timer {
public:
    virtual ~Timer() = default;

    // Whether the work can still be called: false for a one-shot timer that has fired.
    [[nodiscard]] virtual bool isPending() const = 0;
};

class Dispatch {
public:
    virtual ~Dispatch() = default;

    // Queues work on the main thread, behind all that was queued before it; never runs it in place. Work that
    // is still queued when the application ends is dropped.
    virtual void main(Work work) = 0;

    // Queues work on the main thread once `delay` has passed.
    virtual void mainAfter(Duration delay, Work work) = 0;

    // Runs work on a background thread, side by side with other work.
    virtual void global(Priority priority, Work work) = 0;

    // The same once `delay` has passed. Waiting holds no thread.
    virtual void globalAfter(Priority priority, Duration delay, Work work) = 0;

    // A new queue; the label names its thread for debuggers.
    [[nodiscard]] virtual std::unique_ptr<SerialQueue> serialQueue(std::string_view label) = 0;

    // Calls `work` on the main thread after each `interval`. Called on the main thread.
    [[nodiscard]] virtual std::unique_ptr<Timer> repeatingTimer(Duration interval, Work work) = 0;

    // Calls `work` once on the main thread after `delay`. Called on the main thread.
    [[nodiscard]] virtual std::unique_ptr<Timer> oneShotTimer(Duration delay, Work work) = 0;
};

} // namespace fernwick::platform
