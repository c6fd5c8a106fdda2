#include "platform/qt/QtDispatch.h"

#include "platform/posix/ThreadQueue.h"

#include <algorithm>
#include <optional>

namespace fernwick::platform {

namespace {

QtMainQueue::Moment after(Duration delay) {
    return std::chrono::steady_clock::now() + std::max(delay, Duration{0});
}

class QtTimer final : public Timer {
public:
    QtTimer(const std::shared_ptr<QtMainQueue>& queue, Duration delay, std::optional<Duration> interval,
            Work work)
        : state_(std::make_shared<State>(queue, interval, std::move(work))) {
        arm(state_, after(delay));
    }
    QtTimer(const QtTimer&) = delete;
    QtTimer& operator=(const QtTimer&) = delete;
    ~QtTimer() override {
        state_->pending = false;
        if (const auto queue = state_->queue.lock()) {
            queue->cancel(state_->ticket);
        }
    }

    [[nodiscard]] bool isPending() const override { return state_->pending; }

private:
    struct State {
        State(const std::shared_ptr<QtMainQueue>& mainQueue, std::optional<Duration> every, Work what)
            : queue(mainQueue), interval(every), work(std::move(what)) {}

        std::weak_ptr<QtMainQueue> queue;
        std::optional<Duration> interval; // absent: fires once
        Work work;
        QtMainQueue::Ticket ticket;
        bool pending = true;
    };

    static void arm(const std::shared_ptr<State>& state, QtMainQueue::Moment due) {
        if (const auto queue = state->queue.lock()) {
            state->ticket = queue->postAt(due, [state] { fire(state); });
        }
    }

    static void fire(const std::shared_ptr<State>& state) {
        if (!state->pending) {
            return;
        }
        if (state->interval) {
            // Beats that were missed, as after a sleep of the machine, are not made up for.
            const auto now = std::chrono::steady_clock::now();
            arm(state, std::max(state->ticket.first + *state->interval, now));
        } else {
            state->pending = false;
        }
        state->work();
    }

    std::shared_ptr<State> state_; // shared with what is queued, so that the work may destroy the timer
};

} // namespace

QtDispatch::QtDispatch() : mainQueue_(std::make_shared<QtMainQueue>()) {}

QtDispatch::~QtDispatch() = default;

void QtDispatch::main(Work work) {
    mainQueue_->post(std::move(work));
}

void QtDispatch::mainAfter(Duration delay, Work work) {
    mainQueue_->postAt(after(delay), std::move(work));
}

void QtDispatch::global(Priority priority, Work work) {
    pool_.start(priority, std::move(work));
}

void QtDispatch::globalAfter(Priority priority, Duration delay, Work work) {
    mainQueue_->postAt(after(delay), [this, priority, work = std::move(work)]() mutable {
        pool_.start(priority, std::move(work));
    });
}

std::unique_ptr<SerialQueue> QtDispatch::serialQueue(std::string_view label) {
    return std::make_unique<ThreadQueue>(label);
}

std::unique_ptr<Timer> QtDispatch::repeatingTimer(Duration interval, Work work) {
    const auto step =
        std::max(interval, Duration{1}); // one that is always due would leave no turn to the window
    return std::make_unique<QtTimer>(mainQueue_, step, step, std::move(work));
}

std::unique_ptr<Timer> QtDispatch::oneShotTimer(Duration delay, Work work) {
    return std::make_unique<QtTimer>(mainQueue_, delay, std::nullopt, std::move(work));
}

} // namespace fernwick::platform
