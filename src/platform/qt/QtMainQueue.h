// The main queue and its timers on the Qt event loop. Nothing wakes the loop while there is nothing to do.
// Threads: made and destroyed on the main thread; the operations say who may call them.
#pragma once

#include "platform/Dispatch.h"

#include <QBasicTimer>
#include <QObject>

#include <chrono>
#include <cstdint>
#include <deque>
#include <map>
#include <mutex>
#include <optional>
#include <utility>

namespace fernwick::platform {

class QtMainQueue final : public QObject {
public:
    using Moment = std::chrono::steady_clock::time_point;
    using Ticket = std::pair<Moment, std::uint64_t>; // when it is due, and its age among those due together

    // How long queued work may hold the event loop before the window gets its turn.
    static constexpr std::chrono::milliseconds kTurn{8};

    QtMainQueue() = default;
    QtMainQueue(const QtMainQueue&) = delete;
    QtMainQueue& operator=(const QtMainQueue&) = delete;
    ~QtMainQueue() override;

    // Queues work. Any thread, also before the application object exists.
    void post(Work work);

    // Queues work once its moment has come. Any thread.
    Ticket postAt(Moment due, Work work);

    // Takes out work whose moment has not come. Any thread.
    void cancel(const Ticket& ticket);

protected:
    void customEvent(QEvent* event) override;
    void timerEvent(QTimerEvent* event) override;

private:
    void wake();
    void turn();
    void arm();
    std::optional<Work> next();
    void collectDue(Moment now);

    std::mutex mutex_; // guards all but the timer and what it is set to
    std::deque<Work> queue_;
    std::map<Ticket, Work> delayed_;
    std::uint64_t age_ = 0;
    bool wakePosted_ = false;
    bool closed_ = false;
    QBasicTimer timer_;
    std::optional<Moment> armedFor_;
};

} // namespace fernwick::platform
