#include "ProcessesContract.h"
#include "support/FakeDispatch.h"
#include "support/FakeProcesses.h"

namespace fernwick::platform {

namespace {

using Launched = std::expected<void, LaunchError>;

class FakeProcessesHarness {
public:
    Processes& processes() { return processes_; }
    void pump() { dispatch_.runAll(); }

    template <class Condition>
    [[nodiscard]] bool waitWithoutMain(Condition condition) {
        return condition();
    }

    // The text comes in two pieces, as from a pipe that is shorter than it.
    Launched launchSpeaker(ChildProcess& child, const std::string& text, int status, ProcessHandlers handlers) {
        auto launched = child.launch({"/bin/sh", {}, {}}, std::move(handlers));
        auto fake = processes_.launched().back();
        constexpr std::size_t kPipe = 65536;
        fake->emitStandardError(text.substr(0, kPipe));
        if (text.size() > kPipe) {
            fake->emitStandardError(text.substr(kPipe));
        }
        dispatch_.global(Priority::normal, [fake, status] { fake->exit(status); });
        return launched;
    }
    Launched launchSleeper(ChildProcess& child, ProcessHandlers handlers) {
        return child.launch({"/bin/sleep", {"1000"}, {}}, std::move(handlers));
    }
    Launched launchMissing(ChildProcess& child, ProcessHandlers handlers) {
        processes_.failNextLaunch({ENOENT, "No such file or directory"});
        return child.launch({"/does/not/exist", {}, {}}, std::move(handlers));
    }

private:
    fakes::FakeDispatch dispatch_;
    fakes::FakeProcesses processes_{dispatch_};
};

} // namespace

INSTANTIATE_TYPED_TEST_SUITE_P(Fake, ProcessesContract, FakeProcessesHarness);

TEST(FakeProcesses, RecordsWhatWasAskedOfThem) {
    fakes::FakeDispatch dispatch;
    fakes::FakeProcesses processes(dispatch);
    processes.setExitOnTerminate(std::nullopt);
    processes.setNextPid(77);
    const auto child = processes.makeChild();
    ASSERT_TRUE(child->launch({"/usr/bin/ssh", {"-N"}, {{"A", "b"}}}, {}));
    EXPECT_EQ(child->pid(), 77);
    EXPECT_EQ(processes.last().request().arguments, std::vector<std::string>{"-N"});
    child->terminate();
    dispatch.runAll();
    EXPECT_TRUE(child->isRunning());
    EXPECT_EQ(processes.signals(), (std::vector<fakes::FakeProcesses::Signal>{{77, SIGTERM}}));
    EXPECT_EQ(processes.runningCount(), 1U);
}

} // namespace fernwick::platform
