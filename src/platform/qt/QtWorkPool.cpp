#include "platform/qt/QtWorkPool.h"

#include <utility>

namespace fernwick::platform {

QtWorkPool::QtWorkPool() {
    threads_.setMaxThreadCount(kThreads);
    threads_.setExpiryTimeout(5000);
}

QtWorkPool::~QtWorkPool() {
    decltype(waiting_) dropped; // destroyed after the threads are done
    {
        const std::lock_guard lock(mutex_);
        closed_ = true;
        dropped.swap(waiting_);
    }
    threads_.clear();
    threads_.waitForDone();
}

void QtWorkPool::start(Priority priority, Work work) {
    {
        const std::lock_guard lock(mutex_);
        if (closed_) {
            return;
        }
        waiting_.at(static_cast<std::size_t>(priority)).push_back(std::move(work));
    }
    // One run for each piece of work; which piece it gets is decided when a thread is free.
    threads_.start([this] { runMostUrgent(); });
}

void QtWorkPool::runMostUrgent() {
    Work work;
    {
        const std::lock_guard lock(mutex_);
        for (auto queue = waiting_.rbegin(); queue != waiting_.rend(); ++queue) {
            if (!queue->empty()) {
                work = std::move(queue->front());
                queue->pop_front();
                break;
            }
        }
    }
    if (work) {
        work();
    }
}

} // namespace fernwick::platform
