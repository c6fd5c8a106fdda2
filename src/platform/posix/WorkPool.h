// Background threads that run the most urgent work first. Idle threads end after a while, so rest costs
// nothing. Threads: made and destroyed on the main thread; work may be given from any.
#pragma once

#include "platform/Dispatch.h"

#include <chrono>
#include <cstddef>
#include <memory>

namespace fernwick::platform {

class WorkPool {
public:
    // Work may block on outside commands, so there are many more threads than processors.
    static constexpr std::size_t kMostThreads = 32;
    static constexpr std::chrono::seconds kIdleLife{5};

    WorkPool();
    WorkPool(const WorkPool&) = delete;
    WorkPool& operator=(const WorkPool&) = delete;
    // Finishes.
    ~WorkPool();

    // Drops work that has not begun, and waits for what has; what is given later is dropped too.
    void finish();

    // The same, but waits no longer than that. False when work is still running.
    [[nodiscard]] bool finish(std::chrono::milliseconds limit);

    // Runs the work on one of the threads.
    void start(Priority priority, Work work);

private:
    struct State;

    std::shared_ptr<State> state_; // shared with the threads
};

} // namespace fernwick::platform
