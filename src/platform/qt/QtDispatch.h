// Dispatch on the Qt event loop, a thread pool, and one thread for each serial queue in use.
// Threads: made and destroyed on the main thread, before or after the application object; queues and timers
// that it made may outlive it, timers then never fire.
#pragma once

#include "platform/Dispatch.h"
#include "platform/posix/WorkPool.h"
#include "platform/qt/QtMainQueue.h"

#include <memory>

namespace fernwick::platform {

class QtDispatch final : public Dispatch {
public:
    QtDispatch();
    QtDispatch(const QtDispatch&) = delete;
    QtDispatch& operator=(const QtDispatch&) = delete;
    // Drops everything that has not begun, and waits for background work that has.
    ~QtDispatch() override;

    // Drops background work that has not begun, now and from now on, and waits for what has, but no longer than
    // that. False when work is still running.
    [[nodiscard]] bool finishGlobal(Duration limit) { return pool_.finish(limit); }

    void main(Work work) override;
    void mainAfter(Duration delay, Work work) override;
    void global(Priority priority, Work work) override;
    void globalAfter(Priority priority, Duration delay, Work work) override;
    [[nodiscard]] std::unique_ptr<SerialQueue> serialQueue(std::string_view label) override;
    [[nodiscard]] std::unique_ptr<Timer> repeatingTimer(Duration interval, Work work) override;
    [[nodiscard]] std::unique_ptr<Timer> oneShotTimer(Duration delay, Work work) override;

private:
    std::shared_ptr<QtMainQueue> mainQueue_; // timers hold it weakly
    WorkPool pool_;
};

} // namespace fernwick::platform
