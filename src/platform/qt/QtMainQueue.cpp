#include "platform/qt/QtMainQueue.h"

#include <QCoreApplication>
#include <QEvent>

#include <algorithm>
#include <limits>

namespace fernwick::platform {

namespace {

// Shorter waits are kept to the millisecond; longer ones may be bundled with other wake-ups of the machine.
constexpr std::chrono::milliseconds kPreciseBelow{2000};

} // namespace

QtMainQueue::~QtMainQueue() {
    std::deque<Work> queue;
    std::map<Ticket, Work> delayed;
    const std::lock_guard lock(mutex_);
    closed_ = true;
    // What is dropped is destroyed after the lock is gone: its captures may queue work when they go.
    queue.swap(queue_);
    delayed.swap(delayed_);
}

void QtMainQueue::post(Work work) {
    const std::lock_guard lock(mutex_);
    if (!closed_) {
        queue_.push_back(std::move(work));
        wake();
    }
}

QtMainQueue::Ticket QtMainQueue::postAt(Moment due, Work work) {
    const std::lock_guard lock(mutex_);
    const Ticket ticket{due, ++age_};
    if (!closed_) {
        const auto place = delayed_.emplace(ticket, std::move(work)).first;
        if (place == delayed_.begin()) {
            wake(); // the timer has to be set anew, which only the main thread can do
        }
    }
    return ticket;
}

void QtMainQueue::cancel(const Ticket& ticket) {
    std::map<Ticket, Work>::node_type dropped; // outlives the lock
    const std::lock_guard lock(mutex_);
    dropped = delayed_.extract(ticket);
    if (!dropped.empty() && delayed_.empty()) {
        wake(); // nothing is waited for any more, so the timer is stopped
    }
}

// Called with the lock held.
void QtMainQueue::wake() {
    if (!wakePosted_) {
        wakePosted_ = true;
        QCoreApplication::postEvent(this, std::make_unique<QEvent>(QEvent::User).release());
    }
}

void QtMainQueue::customEvent(QEvent* /*event*/) {
    {
        const std::lock_guard lock(mutex_);
        wakePosted_ = false;
    }
    turn();
}

void QtMainQueue::timerEvent(QTimerEvent* /*event*/) {
    timer_.stop();
    armedFor_.reset();
    turn();
}

void QtMainQueue::turn() {
    const auto start = std::chrono::steady_clock::now();
    collectDue(start);
    while (auto work = next()) {
        (*work)();
        if (std::chrono::steady_clock::now() - start >= kTurn) {
            const std::lock_guard lock(mutex_);
            if (!queue_.empty()) {
                wake();
            }
            break;
        }
    }
    arm();
}

std::optional<Work> QtMainQueue::next() {
    const std::lock_guard lock(mutex_);
    if (queue_.empty()) {
        return std::nullopt;
    }
    auto work = std::move(queue_.front());
    queue_.pop_front();
    return work;
}

void QtMainQueue::collectDue(Moment now) {
    const std::lock_guard lock(mutex_);
    while (!delayed_.empty() && delayed_.begin()->first.first <= now) {
        queue_.push_back(std::move(delayed_.begin()->second));
        delayed_.erase(delayed_.begin());
    }
}

void QtMainQueue::arm() {
    const std::lock_guard lock(mutex_);
    if (delayed_.empty()) {
        timer_.stop();
        armedFor_.reset();
        return;
    }
    const auto due = delayed_.begin()->first.first;
    if (armedFor_ == due) {
        return;
    }
    using std::chrono::milliseconds;
    const auto wait = std::chrono::ceil<milliseconds>(due - std::chrono::steady_clock::now());
    const auto bounded = std::clamp<milliseconds::rep>(wait.count(), 0, std::numeric_limits<int>::max());
    timer_.start(static_cast<int>(bounded), wait < kPreciseBelow ? Qt::PreciseTimer : Qt::CoarseTimer, this);
    armedFor_ = due;
}

} // namespace fernwick::platform
