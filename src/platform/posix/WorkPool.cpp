#include "platform/posix/WorkPool.h"

#include "platform/ThreadName.h"

#include <array>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>
#include <utility>

namespace fernwick::platform {

struct WorkPool::State {
    std::mutex mutex; // guards what follows
    std::condition_variable given;
    std::condition_variable ended;
    std::array<std::deque<Work>, 3> waiting; // by priority, the least urgent first
    std::size_t waitingCount = 0;
    std::size_t idleThreads = 0;
    std::size_t threads = 0;
    bool closed = false;

    // The most urgent work, the oldest of its kind. There must be some. Called with the lock held.
    Work take() {
        --waitingCount;
        for (auto queue = waiting.rbegin();; ++queue) {
            if (!queue->empty()) {
                auto work = std::move(queue->front());
                queue->pop_front();
                return work;
            }
        }
    }

    // What each thread does. It ends when it had nothing to do for a while, or when the pool closes.
    void run() {
        nameThisThread("worker");
        std::unique_lock lock(mutex);
        while (true) {
            ++idleThreads;
            given.wait_for(lock, kIdleLife, [&] { return closed || waitingCount > 0; });
            --idleThreads;
            if (closed || waitingCount == 0) {
                break;
            }
            auto work = take();
            lock.unlock();
            work();
            work = nullptr; // its captures go here, not under the lock
            lock.lock();
        }
        --threads;
        ended.notify_all();
    }
};

WorkPool::WorkPool() : state_(std::make_shared<State>()) {}

WorkPool::~WorkPool() {
    finish();
}

void WorkPool::finish() {
    while (!finish(std::chrono::hours{1})) {
    }
}

bool WorkPool::finish(std::chrono::milliseconds limit) {
    decltype(State::waiting) dropped; // destroyed once the lock is gone
    std::unique_lock lock(state_->mutex);
    state_->closed = true;
    dropped.swap(state_->waiting);
    state_->waitingCount = 0;
    state_->given.notify_all();
    return state_->ended.wait_for(lock, limit, [&] { return state_->threads == 0; });
}

void WorkPool::start(Priority priority, Work work) {
    const std::lock_guard lock(state_->mutex);
    if (state_->closed) {
        return;
    }
    state_->waiting.at(static_cast<std::size_t>(priority)).push_back(std::move(work));
    ++state_->waitingCount;
    if (state_->waitingCount > state_->idleThreads && state_->threads < kMostThreads) {
        ++state_->threads;
        std::thread([state = state_] { state->run(); }).detach(); // the destructor waits for it by count
    }
    state_->given.notify_one();
}

} // namespace fernwick::platform
