#include "support/FakeDispatch.h"

#include <algorithm>

namespace fernwick::fakes {

using platform::Priority;

struct FakeDispatch::Core {
    using Key = std::pair<Duration, std::size_t>; // due time, then age

    struct SerialState {
        std::deque<Work> work;
    };

    // Queues the work of mainAfter and globalAfter: `move` puts it on its queue, with the core locked.
    void schedule(Record record, std::function<void(Core&, Work)> move, Work work) {
        const std::lock_guard lock(mutex);
        records.push_back(record);
        ++delayedWork;
        const Key key{elapsed + std::max(record.delay, Duration{0}), ++age};
        delayed.emplace(key, [this, move = std::move(move), work = std::move(work)]() mutable {
            const std::lock_guard relock(mutex);
            --delayedWork;
            move(*this, std::move(work));
        });
    }

    // Takes the oldest work of a queue, or nothing.
    std::optional<Work> pop(std::deque<Work>& queue) {
        const std::lock_guard lock(mutex);
        if (queue.empty()) {
            return std::nullopt;
        }
        auto work = std::move(queue.front());
        queue.pop_front();
        return work;
    }

    std::optional<Work> popDue(Duration until) {
        const std::lock_guard lock(mutex);
        const auto first = delayed.begin();
        if (first == delayed.end() || first->first.first > until) {
            return std::nullopt;
        }
        elapsed = std::max(elapsed, first->first.first);
        auto work = std::move(first->second);
        delayed.erase(first);
        return work;
    }

    mutable std::mutex mutex;
    Duration elapsed{0};
    std::size_t age = 0;
    std::size_t timers = 0;
    std::size_t delayedWork = 0;
    std::deque<Work> main;
    std::map<Priority, std::deque<Work>, std::greater<>> global;
    std::map<Key, Work> delayed;
    std::vector<std::pair<std::string, std::weak_ptr<SerialState>>> serial;
    std::vector<Record> records;
};

class FakeDispatch::FakeTimer final : public platform::Timer {
public:
    struct State {
        Work work;
        std::optional<Duration> interval;
        bool pending = true;
        Core::Key key; // where it stands among what is delayed
    };

    FakeTimer(std::shared_ptr<Core> core, Duration delay, std::optional<Duration> interval, Work work)
        : core_(std::move(core)), state_(std::make_shared<State>(State{std::move(work), interval, true, {}})) {
        const std::lock_guard lock(core_->mutex);
        ++core_->timers;
        arm(*core_, core_->elapsed + delay, state_);
    }
    FakeTimer(const FakeTimer&) = delete;
    FakeTimer& operator=(const FakeTimer&) = delete;
    ~FakeTimer() override {
        const std::lock_guard lock(core_->mutex);
        core_->timers -= state_->pending ? 1 : 0;
        state_->pending = false;
        core_->delayed.erase(state_->key);
    }

    [[nodiscard]] bool isPending() const override { return state_->pending; }

private:
    // Called with the core locked.
    static void arm(Core& core, Duration due, const std::shared_ptr<State>& state) {
        state->key = {due, ++core.age};
        core.delayed.emplace(state->key, [&core, due, state] {
            const std::lock_guard lock(core.mutex);
            if (state->pending && state->interval) {
                arm(core, due + *state->interval, state);
            }
            core.main.emplace_back([&core, state] { fire(core, *state); });
        });
    }

    static void fire(Core& core, State& state) {
        if (!state.pending) {
            return;
        }
        if (!state.interval) {
            const std::lock_guard lock(core.mutex);
            state.pending = false;
            --core.timers;
        }
        state.work();
    }

    std::shared_ptr<Core> core_;
    std::shared_ptr<State> state_;
};

class FakeDispatch::FakeSerialQueue final : public platform::SerialQueue {
public:
    FakeSerialQueue(std::shared_ptr<Core> core, std::shared_ptr<Core::SerialState> state)
        : core_(std::move(core)), state_(std::move(state)) {}
    FakeSerialQueue(const FakeSerialQueue&) = delete;
    FakeSerialQueue& operator=(const FakeSerialQueue&) = delete;
    ~FakeSerialQueue() override { FakeSerialQueue::drain(); }

    void async(Work work) override {
        const std::lock_guard lock(core_->mutex);
        state_->work.push_back(std::move(work));
    }
    void drain() override {
        while (auto work = core_->pop(state_->work)) {
            (*work)();
        }
    }

private:
    std::shared_ptr<Core> core_;
    std::shared_ptr<Core::SerialState> state_;
};

FakeDispatch::FakeDispatch() : core_(std::make_shared<Core>()) {}

FakeDispatch::~FakeDispatch() {
    // What is still queued is dropped; it may hold timers and queues that hold the core.
    core_->main.clear();
    core_->global.clear();
    core_->delayed.clear();
}

void FakeDispatch::main(Work work) {
    const std::lock_guard lock(core_->mutex);
    core_->records.push_back({Record::Kind::main, Priority::normal, Duration{0}});
    core_->main.push_back(std::move(work));
}

void FakeDispatch::mainAfter(Duration delay, Work work) {
    core_->schedule(
        {Record::Kind::mainAfter, Priority::normal, delay},
        [](Core& core, Work due) { core.main.push_back(std::move(due)); }, std::move(work));
}

void FakeDispatch::global(Priority priority, Work work) {
    const std::lock_guard lock(core_->mutex);
    core_->records.push_back({Record::Kind::global, priority, Duration{0}});
    core_->global[priority].push_back(std::move(work));
}

void FakeDispatch::globalAfter(Priority priority, Duration delay, Work work) {
    core_->schedule(
        {Record::Kind::globalAfter, priority, delay},
        [priority](Core& core, Work due) { core.global[priority].push_back(std::move(due)); }, std::move(work));
}

std::unique_ptr<platform::SerialQueue> FakeDispatch::serialQueue(std::string_view label) {
    auto state = std::make_shared<Core::SerialState>();
    const std::lock_guard lock(core_->mutex);
    core_->serial.emplace_back(std::string(label), state);
    return std::make_unique<FakeSerialQueue>(core_, std::move(state));
}

std::unique_ptr<platform::Timer> FakeDispatch::repeatingTimer(Duration interval, Work work) {
    const auto step = std::max(interval, Duration{1}); // an interval of none would stop virtual time
    return std::make_unique<FakeTimer>(core_, step, step, std::move(work));
}

std::unique_ptr<platform::Timer> FakeDispatch::oneShotTimer(Duration delay, Work work) {
    return std::make_unique<FakeTimer>(core_, std::max(delay, Duration{0}), std::nullopt, std::move(work));
}

std::size_t FakeDispatch::runMain() {
    std::size_t count = 0;
    while (auto work = core_->pop(core_->main)) {
        (*work)();
        ++count;
    }
    return count;
}

std::size_t FakeDispatch::runGlobal() {
    std::map<Priority, std::deque<Work>, std::greater<>> ready;
    {
        const std::lock_guard lock(core_->mutex);
        ready.swap(core_->global);
    }
    std::size_t count = 0;
    for (auto& [priority, queue] : ready) {
        for (auto& work : queue) {
            work();
            ++count;
        }
    }
    return count;
}

std::size_t FakeDispatch::runSerial() {
    std::vector<std::shared_ptr<Core::SerialState>> queues;
    {
        const std::lock_guard lock(core_->mutex);
        for (const auto& [label, state] : core_->serial) {
            if (auto queue = state.lock()) {
                queues.push_back(std::move(queue));
            }
        }
    }
    std::size_t count = 0;
    for (const auto& queue : queues) {
        std::deque<Work> ready;
        {
            const std::lock_guard lock(core_->mutex);
            ready.swap(queue->work);
        }
        for (auto& work : ready) {
            work();
            ++count;
        }
    }
    return count;
}

void FakeDispatch::runAll() {
    const auto now = elapsed();
    for (bool ran = true; ran;) {
        ran = runMain() > 0;
        ran = (!globalHeld_ && runGlobal() > 0) || ran;
        ran = runSerial() > 0 || ran;
        if (auto fire = core_->popDue(now)) {
            (*fire)();
            ran = true;
        }
    }
}

void FakeDispatch::advance(Duration duration) {
    const auto until = elapsed() + duration;
    runAll();
    while (auto fire = core_->popDue(until)) {
        (*fire)();
        runAll();
    }
    const std::lock_guard lock(core_->mutex);
    core_->elapsed = std::max(core_->elapsed, until); // work that slept may have gone beyond
}

void FakeDispatch::pass(Duration duration) {
    const std::lock_guard lock(core_->mutex);
    core_->elapsed += duration;
}

FakeDispatch::Duration FakeDispatch::elapsed() const {
    const std::lock_guard lock(core_->mutex);
    return core_->elapsed;
}

std::size_t FakeDispatch::pendingTimers() const {
    const std::lock_guard lock(core_->mutex);
    return core_->timers;
}

std::size_t FakeDispatch::pendingDelayed() const {
    const std::lock_guard lock(core_->mutex);
    return core_->delayedWork;
}

std::size_t FakeDispatch::queuedMain() const {
    const std::lock_guard lock(core_->mutex);
    return core_->main.size();
}

std::size_t FakeDispatch::queuedGlobal() const {
    const std::lock_guard lock(core_->mutex);
    std::size_t count = 0;
    for (const auto& [priority, queue] : core_->global) {
        count += queue.size();
    }
    return count;
}

std::size_t FakeDispatch::queuedSerial() const {
    const std::lock_guard lock(core_->mutex);
    std::size_t count = 0;
    for (const auto& [label, state] : core_->serial) {
        const auto queue = state.lock();
        count += queue ? queue->work.size() : 0;
    }
    return count;
}

std::vector<std::string> FakeDispatch::serialLabels() const {
    const std::lock_guard lock(core_->mutex);
    std::vector<std::string> labels;
    for (const auto& [label, state] : core_->serial) {
        labels.push_back(label);
    }
    return labels;
}

std::vector<FakeDispatch::Record> FakeDispatch::records() const {
    const std::lock_guard lock(core_->mutex);
    return core_->records;
}

} // namespace fernwick::fakes
