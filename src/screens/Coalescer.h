// Gathers many requests for the same work into one run per turn of the event loop, and into fewer runs while
// the requests do not end: two hundred tunnels that change all the time are drawn a few times a second.
// Threads: main thread only.
#pragma once

#include "platform/Dispatch.h"
#include "support/Weak.h"

#include <functional>
#include <memory>
#include <utility>

namespace fernwick {

class Coalescer {
public:
    // So many runs are made at once within an interval; then there is one at the end of each, until an interval
    // ends with nothing asked for.
    static constexpr int kRunsAtOnce = 8;
    static constexpr platform::Duration kInterval{150};

    // The dispatch outlives the coalescer; the work is not called after the coalescer is gone.
    Coalescer(platform::Dispatch& dispatch, std::function<void()> work)
        : dispatch_(dispatch), work_(std::move(work)), self_(*this) {}

    // Queues the work, unless it is queued already; the last request of many is always followed by a run.
    void request() {
        if (std::exchange(pending_, true) || runs_ >= kRunsAtOnce) {
            return;
        }
        dispatch_.main([weak = self_.weak()] {
            if (auto* self = weak.get()) {
                self->flush();
            }
        });
    }

    // Runs the work now if it was requested; a run that was to come finds nothing to do.
    void flush() {
        if (!std::exchange(pending_, false)) {
            return;
        }
        ++runs_;
        if (!interval_ || !interval_->isPending()) {
            startInterval();
        }
        work_();
    }

private:
    void startInterval() {
        interval_ = dispatch_.oneShotTimer(kInterval, [this] {
            runs_ = pending_ ? kRunsAtOnce : 0;
            flush();
        });
    }

    platform::Dispatch& dispatch_;
    std::function<void()> work_;
    bool pending_ = false;
    int runs_ = 0; // in this interval
    std::unique_ptr<platform::Timer> interval_;
    support::WeakSource<Coalescer> self_;
};

} // namespace fernwick
