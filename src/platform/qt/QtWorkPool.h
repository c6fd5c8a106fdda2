// Background threads that run the most urgent work first. Idle threads end after a while, so rest costs
// nothing. Threads: made and destroyed on the main thread; work may be given from any.
#pragma once

#include "platform/Dispatch.h"

#include <QThreadPool>

#include <array>
#include <deque>
#include <mutex>

namespace fernwick::platform {

class QtWorkPool {
public:
    // Work may block on outside commands, so there are many more threads than processors.
    static constexpr int kThreads = 32;

    QtWorkPool();
    QtWorkPool(const QtWorkPool&) = delete;
    QtWorkPool& operator=(const QtWorkPool&) = delete;
    // Drops work that has not begun, and waits for what has.
    ~QtWorkPool();

    // Runs the work on one of the threads.
    void start(Priority priority, Work work);

private:
    void runMostUrgent();

    std::mutex mutex_;
    std::array<std::deque<Work>, 3> waiting_; // by priority, the least urgent first
    bool closed_ = false;
    QThreadPool threads_;
};

} // namespace fernwick::platform
