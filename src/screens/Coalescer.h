// Gathers many requests for the same work into one run per turn of the event loop.
// Threads: main thread only.
#pragma once

#include "platform/Dispatch.h"
#include "support/Weak.h"

#include <functional>
#include <utility>

namespace fernwick {

class Coalescer {
public:
    // The dispatch outlives the coalescer; the work is not called after the coalescer is gone.
    Coalescer(platform::Dispatch& dispatch, std::function<void()> work)
        : dispatch_(dispatch), work_(std::move(work)), self_(*this) {}

    // Queues the work, unless it is queued already.
    void request() {
        if (std::exchange(pending_, true)) {
            return;
        }
        dispatch_.main([weak = self_.weak()] {
            if (auto* self = weak.get()) {
                self->flush();
            }
        });
    }

    // Runs the work now if it was requested; the queued run then finds nothing to do.
    void flush() {
        if (std::exchange(pending_, false)) {
            work_();
        }
    }

private:
    platform::Dispatch& dispatch_;
    std::function<void()> work_;
    bool pending_ = false;
    support::WeakSource<Coalescer> self_;
};

} // namespace fernwick
