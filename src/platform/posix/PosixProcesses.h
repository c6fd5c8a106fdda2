// Child processes of a POSIX system, watched by one thread.
#pragma once

#include "platform/ChildProcess.h"
#include "platform/linux/ChildReactor.h"
#include "platform/posix/ChildLauncher.h"

#include <memory>
#include <mutex>

namespace fernwick::platform {

// A child as ChildProcess describes it. The kernel kills it when the thread that launched it ends.
class PosixChildProcess final : public ChildProcess {
public:
    PosixChildProcess(const ChildLauncher& launcher, std::weak_ptr<ChildReactor> reactor)
        : launcher_(launcher), reactor_(std::move(reactor)) {}

    [[nodiscard]] std::expected<void, LaunchError> launch(ProcessRequest request,
                                                          ProcessHandlers handlers) override;
    [[nodiscard]] int pid() const override;
    [[nodiscard]] bool isRunning() const override;
    void terminate() override;

private:
    [[nodiscard]] std::shared_ptr<RunningChild> running() const;

    const ChildLauncher& launcher_;
    std::weak_ptr<ChildReactor> reactor_;
    mutable std::mutex mutex_;
    std::shared_ptr<RunningChild> running_; // null before a successful launch
};

// Threads: as Processes; made and destroyed on the main thread. Handlers are called on the reactor's thread,
// and not any more once this is destroyed.
class PosixProcesses final : public Processes {
public:
    // Both outlive the processes and the children.
    PosixProcesses(Dispatch& dispatch, const ChildLauncher& launcher)
        : launcher_(launcher), reactor_(std::make_shared<ChildReactor>(dispatch)) {}

    [[nodiscard]] std::shared_ptr<ChildProcess> makeChild() override;
    void sendSignal(int pid, int signal) override;
    void suspend(int pid) override;

private:
    const ChildLauncher& launcher_;
    std::shared_ptr<ChildReactor> reactor_;
};

} // namespace fernwick::platform
