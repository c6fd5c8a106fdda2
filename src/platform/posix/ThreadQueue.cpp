#include "platform/posix/ThreadQueue.h"

#include "platform/ThreadName.h"

namespace fernwick::platform {

ThreadQueue::~ThreadQueue() {
    {
        const std::lock_guard lock(mutex_);
        closing_ = true;
    }
    queuedSome_.notify_one();
    if (thread_.joinable()) {
        thread_.join();
    }
}

void ThreadQueue::async(Work work) {
    {
        const std::lock_guard lock(mutex_);
        queue_.push_back(std::move(work));
        ++queuedCount_;
        if (!thread_.joinable()) {
            thread_ = std::thread([this] { run(); });
        }
    }
    queuedSome_.notify_one();
}

void ThreadQueue::drain() {
    std::unique_lock lock(mutex_);
    const auto goal = queuedCount_;
    ranSome_.wait(lock, [&] { return ranCount_ >= goal; });
}

void ThreadQueue::run() {
    nameThisThread(label_);
    std::unique_lock lock(mutex_);
    while (true) {
        queuedSome_.wait(lock, [&] { return closing_ || !queue_.empty(); });
        if (queue_.empty()) {
            return;
        }
        auto work = std::move(queue_.front());
        queue_.pop_front();
        lock.unlock();
        work();
        work = nullptr; // its captures go before anyone is told that it has run
        lock.lock();
        ++ranCount_;
        ranSome_.notify_all();
    }
}

} // namespace fernwick::platform
