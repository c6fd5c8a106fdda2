// One thread that waits for the ends and the standard error of all children (epoll(7)). It starts with the
// first child, and sleeps while no child does anything. Threads: made and destroyed on the main thread.
#pragma once

#include "platform/Dispatch.h"
#include "platform/linux/RunningChild.h"

#include <memory>
#include <thread>

namespace fernwick::platform {

class ChildReactor {
public:
    // The dispatch outlives the reactor.
    explicit ChildReactor(Dispatch& dispatch);
    ChildReactor(const ChildReactor&) = delete;
    ChildReactor& operator=(const ChildReactor&) = delete;
    // Stops watching: no handler is called any more. The children that live are asked to end, with their
    // groups.
    ~ChildReactor();

    // Calls the child's handlers from now until it has ended. Main thread.
    void watch(std::shared_ptr<RunningChild> child);

private:
    class Core;

    std::shared_ptr<Core> core_; // held weakly by what is on its way through the main queue
    std::thread thread_;
};

} // namespace fernwick::platform
