// Children that exist only on paper: they record what was asked of them and live, speak and end on command.
// Threads: the test's thread. What a real backend would tell from its own queue is queued as background work of
// the dispatch; what the test commands directly is told in place.
#pragma once

#include "platform/ChildProcess.h"
#include "platform/Dispatch.h"

#include <csignal>
#include <cstddef>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace fernwick::fakes {

class FakeProcesses;

class FakeChildProcess final : public platform::ChildProcess,
                               public std::enable_shared_from_this<FakeChildProcess> {
public:
    explicit FakeChildProcess(FakeProcesses& processes) : processes_(processes) {}

    [[nodiscard]] std::expected<void, platform::LaunchError>
    launch(platform::ProcessRequest request, platform::ProcessHandlers handlers) override;
    [[nodiscard]] int pid() const override { return pid_; }
    [[nodiscard]] bool isRunning() const override { return running_; }
    void terminate() override;

    // Ends the child now: an exit status or the number of a signal. Does nothing when it does not run.
    void exit(int status);

    // Writes to standard error. Told at once, or, while the last piece is still on its way through the main
    // queue, together with what else has come once that has passed.
    void emitStandardError(std::string_view bytes);

    // Whether SIGTERM ends the child (the default), and with which status; absent: it takes no notice.
    void setExitOnTerminate(std::optional<int> status) { exitOnTerminate_ = status; }

    // What it was launched with; empty before the launch and after one that failed.
    [[nodiscard]] const platform::ProcessRequest& request() const { return request_; }
    [[nodiscard]] bool launched() const { return pid_ != 0; }
    [[nodiscard]] int terminations() const { return terminations_; }

private:
    friend class FakeProcesses;
    void exitSoon(int status);
    void deliver();

    FakeProcesses& processes_;
    platform::ProcessRequest request_;
    platform::ProcessHandlers handlers_;
    int pid_ = 0;
    bool running_ = false;
    int terminations_ = 0;
    std::optional<int> exitOnTerminate_ = SIGTERM;
    bool stopped_ = false; // and so deaf to all but the kill
    std::string unread_;
    bool chunkInFlight_ = false;
};

class FakeProcesses final : public platform::Processes {
public:
    using Signal = std::pair<int, int>; // process id, signal

    // The dispatch outlives the processes, and these outlive their children.
    explicit FakeProcesses(platform::Dispatch& dispatch) : dispatch_(dispatch) {}

    [[nodiscard]] std::shared_ptr<platform::ChildProcess> makeChild() override;

    // Records the signal. SIGKILL ends a child of ours; SIGTERM acts as terminate() does.
    void sendSignal(int pid, int signal) override;

    // Records it as SIGSTOP. A child of ours is deaf to all but the kill from then on.
    void suspend(int pid) override { sendSignal(pid, SIGSTOP); }

    // Lets the next launches fail, one for each call.
    void failNextLaunch(platform::LaunchError error) { launchErrors_.push_back(std::move(error)); }

    // Applies to children made from now on; see FakeChildProcess.
    void setExitOnTerminate(std::optional<int> status) { exitOnTerminate_ = status; }

    // The process id of the next child that is launched; each after it gets one more.
    void setNextPid(int pid) { nextPid_ = pid; }

    // All children that were made, launched or not, oldest first.
    [[nodiscard]] const std::vector<std::shared_ptr<FakeChildProcess>>& children() const { return children_; }

    // Those whose launch succeeded, in the order of their launch.
    [[nodiscard]] const std::vector<std::shared_ptr<FakeChildProcess>>& launched() const { return launched_; }

    // The child launched last; there must be one.
    [[nodiscard]] FakeChildProcess& last() const { return *launched_.at(launched_.size() - 1); }

    [[nodiscard]] std::size_t runningCount() const;
    [[nodiscard]] const std::vector<Signal>& signals() const { return signals_; }

private:
    friend class FakeChildProcess;

    platform::Dispatch& dispatch_;
    std::vector<std::shared_ptr<FakeChildProcess>> children_;
    std::vector<std::shared_ptr<FakeChildProcess>> launched_;
    std::deque<platform::LaunchError> launchErrors_;
    std::vector<Signal> signals_;
    std::optional<int> exitOnTerminate_ = SIGTERM;
    int nextPid_ = 1000;
};

} // namespace fernwick::fakes
