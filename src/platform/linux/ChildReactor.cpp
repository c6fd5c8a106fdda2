#include "platform/linux/ChildReactor.h"

#include "platform/ThreadName.h"

#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <unordered_map>
#include <unordered_set>

namespace fernwick::platform {

// Each descriptor is watched for one event at a time (EPOLLONESHOT), and armed again when that was dealt with.
// So a child whose last piece of standard error is still on its way through the main queue makes no further
// events.
class ChildReactor::Core final : public std::enable_shared_from_this<Core> {
public:
    explicit Core(Dispatch& dispatch);

    void watch(std::shared_ptr<RunningChild> child);
    void run();
    void stop() const;
    void endGroups();

private:
    enum Kind : std::uint64_t { process = 0, standardError = 1 };
    static constexpr std::uint64_t kStop = 0; // children are numbered from 1

    void handle(std::uint64_t id, Kind kind);
    void readSome(std::uint64_t id, RunningChild& child);
    void end(std::uint64_t id, RunningChild& child);
    void waitForMain(std::uint64_t id);
    void resume(std::uint64_t id);
    void control(int operation, const FileDescriptor& descriptor, std::uint64_t id, Kind kind) const;

    Dispatch& dispatch_;
    FileDescriptor epoll_;
    FileDescriptor stop_;
    std::mutex mutex_; // guards what follows
    std::unordered_map<std::uint64_t, std::shared_ptr<RunningChild>> children_;
    std::unordered_set<std::uint64_t> waitingForMain_;
    std::uint64_t lastId_ = 0;
    std::string buffer_ = std::string(64UL * 1024, '\0'); // the reactor thread's own
};

ChildReactor::Core::Core(Dispatch& dispatch)
    : dispatch_(dispatch), epoll_(epoll_create1(EPOLL_CLOEXEC)), stop_(eventfd(0, EFD_CLOEXEC)) {
    if (!epoll_ || !stop_) {
        std::perror("Child processes cannot be watched"); // no descriptor is left at the very start
        std::abort();
    }
    epoll_event event{EPOLLIN, {.u64 = kStop}};
    epoll_ctl(epoll_.get(), EPOLL_CTL_ADD, stop_.get(), &event);
}

void ChildReactor::Core::watch(std::shared_ptr<RunningChild> child) {
    const std::lock_guard lock(mutex_);
    const auto id = ++lastId_;
    const auto& watched = *children_.emplace(id, std::move(child)).first->second;
    control(EPOLL_CTL_ADD, watched.standardError(), id, standardError);
    control(EPOLL_CTL_ADD, watched.process(), id, process);
}

void ChildReactor::Core::stop() const {
    eventfd_write(stop_.get(), 1);
}

void ChildReactor::Core::endGroups() {
    const std::lock_guard lock(mutex_);
    for (const auto& [id, child] : children_) {
        if (!child->isReaped()) {
            child->endGroup();
        }
    }
}

void ChildReactor::Core::run() {
    nameThisThread("child reactor");
    std::array<epoll_event, 64> events{};
    while (true) {
        const int count = epoll_wait(epoll_.get(), events.data(), static_cast<int>(events.size()), -1);
        for (int index = 0; index < count; ++index) {
            const auto key = events.at(static_cast<std::size_t>(index)).data.u64;
            if (key == kStop) {
                return;
            }
            handle(key >> 1, (key & 1) != 0 ? standardError : process);
        }
    }
}

void ChildReactor::Core::handle(std::uint64_t id, Kind kind) {
    std::shared_ptr<RunningChild> child;
    {
        const std::lock_guard lock(mutex_);
        const auto found = children_.find(id);
        if (found == children_.end()) {
            return; // ended by an earlier event of the same batch
        }
        child = found->second;
    }
    if (kind == standardError) {
        readSome(id, *child);
    } else {
        end(id, *child);
    }
}

void ChildReactor::Core::readSome(std::uint64_t id, RunningChild& child) {
    if (child.isReaped()) {
        return; // what is left is handed over on the way to the end
    }
    // Where there is nothing to hand over, the child has closed its end; it may live on.
    if (child.deliver(buffer_)) {
        waitForMain(id);
    }
}

void ChildReactor::Core::end(std::uint64_t id, RunningChild& child) {
    if (!child.isReaped()) {
        child.reap();
    }
    {
        const std::lock_guard lock(mutex_);
        if (waitingForMain_.contains(id)) {
            return; // comes back when the main queue has passed
        }
    }
    if (child.hasUnread() && child.deliver(buffer_) && child.hasUnread()) {
        waitForMain(id);
        return;
    }
    {
        const std::lock_guard lock(mutex_);
        control(EPOLL_CTL_DEL, child.standardError(), id, standardError);
        control(EPOLL_CTL_DEL, child.process(), id, process);
        children_.erase(id);
    }
    child.finish();
}

void ChildReactor::Core::waitForMain(std::uint64_t id) {
    {
        const std::lock_guard lock(mutex_);
        waitingForMain_.insert(id);
    }
    dispatch_.main([weak = weak_from_this(), id] {
        if (const auto core = weak.lock()) {
            core->resume(id);
        }
    });
}

void ChildReactor::Core::resume(std::uint64_t id) {
    const std::lock_guard lock(mutex_);
    waitingForMain_.erase(id);
    if (const auto found = children_.find(id); found != children_.end()) {
        // The end is looked for anew, since it may have come meanwhile and been put off.
        control(EPOLL_CTL_MOD, found->second->process(), id, process);
        control(EPOLL_CTL_MOD, found->second->standardError(), id, standardError);
    }
}

void ChildReactor::Core::control(int operation, const FileDescriptor& descriptor, std::uint64_t id,
                                 Kind kind) const {
    epoll_event event{EPOLLIN | EPOLLONESHOT, {.u64 = id << 1 | kind}};
    epoll_ctl(epoll_.get(), operation, descriptor.get(), &event);
}

ChildReactor::ChildReactor(Dispatch& dispatch) : core_(std::make_shared<Core>(dispatch)) {}

ChildReactor::~ChildReactor() {
    core_->stop();
    if (thread_.joinable()) {
        thread_.join();
    }
    core_->endGroups();
}

void ChildReactor::watch(std::shared_ptr<RunningChild> child) {
    core_->watch(std::move(child));
    if (!thread_.joinable()) {
        thread_ = std::thread([core = core_.get()] { core->run(); });
    }
}

} // namespace fernwick::platform
