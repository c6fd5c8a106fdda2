// A serial queue with a thread of its own, which starts with the first work and then waits without waking up.
// Threads: made and destroyed on one thread; the operations may be called from any.
#pragma once

#include "platform/Dispatch.h"

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <mutex>
#include <string>
#include <thread>

namespace fernwick::platform {

class ThreadQueue final : public SerialQueue {
public:
    explicit ThreadQueue(std::string_view label) : label_(label) {}
    ThreadQueue(const ThreadQueue&) = delete;
    ThreadQueue& operator=(const ThreadQueue&) = delete;
    ~ThreadQueue() override;

    void async(Work work) override;
    void drain() override;

private:
    void run();

    const std::string label_;
    std::mutex mutex_;
    std::condition_variable queuedSome_;
    std::condition_variable ranSome_;
    std::deque<Work> queue_;
    std::uint64_t queuedCount_ = 0;
    std::uint64_t ranCount_ = 0;
    bool closing_ = false;
    std::thread thread_;
};

} // namespace fernwick::platform
