#include "ProcessesContract.h"
#include "platform/posix/PosixProcesses.h"
#include "support/FakeDispatch.h"
#include "support/TemporaryFolder.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>

namespace fernwick::platform {

namespace {

using Launched = std::expected<void, LaunchError>;
namespace fs = std::filesystem;

// The real backend; its main queue is the fake's, which takes work from any thread.
class PosixProcessesHarness {
public:
    Processes& processes() { return processes_; }
    void pump() { dispatch_.runMain(); }

    template <class Condition>
    [[nodiscard]] bool waitWithoutMain(Condition condition) {
        return fakes::waitUntil(condition);
    }
    template <class Condition>
    [[nodiscard]] bool waitUntil(Condition condition) {
        return fakes::waitUntil([this] { pump(); }, condition);
    }

    static Launched launchSpeaker(ChildProcess& child, const std::string& text, int status,
                                  ProcessHandlers handlers) {
        const fakes::TemporaryFolder folder;
        folder.write("text", text);
        // The file is opened before the launch returns to the shell's caller, through a descriptor of the
        // script.
        const auto script = "exec 3<\"$FILE\" && rm \"$FILE\" && cat <&3 >&2; exit " + std::to_string(status);
        const auto launched =
            child.launch({"/bin/sh", {"-c", script}, {{"FILE", folder / "text"}, {"PATH", "/usr/bin:/bin"}}},
                         std::move(handlers));
        const bool opened = fakes::waitUntil([&] { return !fs::exists(folder / "text"); });
        EXPECT_TRUE(opened);
        return launched;
    }
    static Launched launchSleeper(ChildProcess& child, ProcessHandlers handlers) {
        return child.launch({"/bin/sleep", {"1000"}, {}}, std::move(handlers));
    }
    static Launched launchMissing(ChildProcess& child, ProcessHandlers handlers) {
        return child.launch({"/does/not/exist", {}, {}}, std::move(handlers));
    }
    static Launched launchScript(ChildProcess& child, const std::string& script, ProcessHandlers handlers) {
        return child.launch({"/bin/sh", {"-c", script}, {{"PATH", "/usr/bin:/bin"}}}, std::move(handlers));
    }

    [[nodiscard]] fakes::FakeDispatch& dispatch() { return dispatch_; }

private:
    fakes::FakeDispatch dispatch_;
    ChildLauncher launcher_;
    PosixProcesses processes_{dispatch_, launcher_};
};

std::string procFile(int pid, const std::string& name) {
    std::ifstream file("/proc/" + std::to_string(pid) + "/" + name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// Zombies count as gone: whoever inherits them may reap them late.
bool isGone(int pid) {
    const auto stat = procFile(pid, "stat");
    const auto state = stat.rfind(')');
    return state == std::string::npos || stat.substr(state + 2, 1) == "Z";
}

// What the descriptors of a process lead to, by number.
std::map<std::string, std::string> descriptors(int pid) {
    std::map<std::string, std::string> found;
    for (const auto& entry : fs::directory_iterator("/proc/" + std::to_string(pid) + "/fd")) {
        std::error_code gone; // the process may close it while it is looked at
        if (auto target = fs::read_symlink(entry.path(), gone); !gone) {
            found[entry.path().filename()] = target.string();
        }
    }
    return found;
}

// The same once the program's own start is over, whose loader opens libraries.
std::map<std::string, std::string> settledDescriptors(int pid) {
    std::map<std::string, std::string> found;
    EXPECT_TRUE(fakes::waitUntil([&] {
        found = descriptors(pid);
        return found.size() == 3;
    })) << found.size();
    return found;
}

class PosixProcessesTest : public testing::Test {
protected:
    // A child that sleeps, ended with the test.
    std::shared_ptr<ChildProcess> sleeper() {
        auto child = harness_.processes().makeChild();
        EXPECT_TRUE(PosixProcessesHarness::launchSleeper(*child, {}));
        return child;
    }
    void TearDown() override {
        for (const int pid : toKill_) {
            harness_.processes().sendSignal(pid, SIGKILL);
        }
    }

    PosixProcessesHarness harness_;
    Told told_;
    std::vector<int> toKill_;
};

} // namespace

INSTANTIATE_TYPED_TEST_SUITE_P(Posix, ProcessesContract, PosixProcessesHarness);

TEST_F(PosixProcessesTest, ChildHasThreeDescriptorsAndNoOther) {
    const int leaking = open("/etc/passwd", O_RDONLY); // NOLINT: without O_CLOEXEC on purpose
    ASSERT_GE(leaking, 0);
    const auto child = sleeper();
    toKill_.push_back(child->pid());
    const auto found = settledDescriptors(child->pid());
    close(leaking);
    ASSERT_EQ(found.size(), 3U);
    EXPECT_EQ(found.at("0"), "/dev/null");
    EXPECT_TRUE(found.at("1").starts_with("pipe:"));
    EXPECT_TRUE(found.at("2").starts_with("pipe:"));
    EXPECT_NE(found.at("1"), found.at("2"));
}

TEST_F(PosixProcessesTest, ClosedStandardDescriptorsOfOursDoNoHarm) {
    const int saved = fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 100);
    close(STDIN_FILENO);
    const auto child = sleeper();
    toKill_.push_back(child->pid());
    const auto found = settledDescriptors(child->pid());
    dup2(saved, STDIN_FILENO);
    close(saved);
    ASSERT_EQ(found.size(), 3U);
    EXPECT_EQ(found.at("0"), "/dev/null");
    EXPECT_TRUE(found.at("2").starts_with("pipe:"));
}

TEST_F(PosixProcessesTest, ChildHasDefaultSignalsAndTheLimitOfTheStart) {
    std::signal(SIGPIPE, SIG_IGN);
    sigset_t some;
    sigemptyset(&some);
    sigaddset(&some, SIGUSR1);
    pthread_sigmask(SIG_BLOCK, &some, nullptr);
    rlimit start{};
    getrlimit(RLIMIT_NOFILE, &start);
    start.rlim_cur = std::min<rlim_t>(start.rlim_max, 512);
    setrlimit(RLIMIT_NOFILE, &start);
    PosixProcessesHarness harness;
    const auto child = harness.processes().makeChild();
    ASSERT_TRUE(PosixProcessesHarness::launchSleeper(*child, {}));
    toKill_.push_back(child->pid());
    const auto status = procFile(child->pid(), "status");
    EXPECT_NE(status.find("SigIgn:\t0000000000000000"), std::string::npos) << status;
    EXPECT_NE(status.find("SigBlk:\t0000000000000000"), std::string::npos) << status;
    const auto limits = procFile(child->pid(), "limits");
    std::istringstream line(limits.substr(limits.find("Max open files")).substr(14));
    rlim_t limit = 0;
    line >> limit;
    EXPECT_EQ(limit, start.rlim_cur);
    sigset_t blocked;
    pthread_sigmask(SIG_UNBLOCK, &some, &blocked);
    EXPECT_EQ(sigismember(&blocked, SIGUSR1), 1) << "a launch must not change our own mask";
}

TEST_F(PosixProcessesTest, ArgumentsAndEnvironmentArriveAsTheyAre) {
    const auto child = harness_.processes().makeChild();
    const std::string odd = "a b\"c'$HOME\n*;\\";
    ASSERT_TRUE(
        child->launch({"/bin/sh", {"-c", "sleep 1000; exit", odd, ""}, {{"ODD", odd}, {"EMPTY", ""}}}, {}));
    toKill_.push_back(child->pid());
    using namespace std::string_literals;
    // The kernel shows them once the program's start is over.
    EXPECT_TRUE(fakes::waitUntil([&] { return !procFile(child->pid(), "environ").empty(); }));
    EXPECT_EQ(procFile(child->pid(), "cmdline"), "/bin/sh\0-c\0sleep 1000; exit\0"s + odd + "\0"s + "\0"s);
    EXPECT_EQ(procFile(child->pid(), "environ"), "EMPTY=\0ODD="s + odd + "\0"s);
    // The shell has a child of its own, which goes with it.
    std::string grandchildren;
    ASSERT_TRUE(fakes::waitUntil([&] {
        const auto pid = std::to_string(child->pid());
        grandchildren = procFile(child->pid(), "task/" + pid + "/children");
        return !grandchildren.empty();
    }));
    toKill_.push_back(std::stoi(grandchildren));
}

TEST_F(PosixProcessesTest, ChildRunsInItsWorkingFolder) {
    const auto child = harness_.processes().makeChild();
    ASSERT_TRUE(child->launch({"/bin/sleep", {"1000"}, {}, "/usr"}, {}));
    toKill_.push_back(child->pid());
    EXPECT_EQ(std::filesystem::read_symlink("/proc/" + std::to_string(child->pid()) + "/cwd"), "/usr");
    const auto lost = harness_.processes().makeChild();
    const auto launched = lost->launch({"/bin/sleep", {"1000"}, {}, "/usr/nowhere"}, {});
    ASSERT_FALSE(launched);
    EXPECT_EQ(launched.error().description, "No such file or directory");
}

TEST_F(PosixProcessesTest, DiscardedOutputNeverFillsUp) {
    const auto child = harness_.processes().makeChild();
    ProcessRequest request{"/bin/sh", {"-c", "head -c 3000000 /dev/zero; exit 4"}, {{"PATH", "/usr/bin:/bin"}}};
    request.discardsOutput = true;
    ASSERT_TRUE(child->launch(request, told_.handlers()));
    EXPECT_TRUE(harness_.waitUntil([&] { return told_.ended(); }));
    EXPECT_EQ(told_.all(), std::vector<std::string>{"X:4"});
}

TEST_F(PosixProcessesTest, ProgramThatMayNotBeExecutedIsRefused) {
    const fakes::TemporaryFolder folder;
    folder.write("plain", "text");
    const auto child = harness_.processes().makeChild();
    const auto launched = child->launch({folder / "plain", {}, {}}, {});
    ASSERT_FALSE(launched);
    EXPECT_EQ(launched.error().code, EACCES);
    EXPECT_EQ(launched.error().description, "Permission denied");
}

TEST_F(PosixProcessesTest, ChildIsLaunchedOnce) {
    const auto child = sleeper();
    toKill_.push_back(child->pid());
    const auto again = PosixProcessesHarness::launchSleeper(*child, {});
    ASSERT_FALSE(again);
    EXPECT_EQ(again.error().code, EBUSY);
}

TEST_F(PosixProcessesTest, ExitDoesNotWaitForAGrandchildThatHoldsTheStream) {
    const auto child = harness_.processes().makeChild();
    ASSERT_TRUE(PosixProcessesHarness::launchScript(*child, "trap '' TERM; sleep 1000 & echo $! >&2; exit 5",
                                                    told_.handlers()));
    ASSERT_TRUE(harness_.waitUntil([&] { return told_.ended(); }));
    const auto told = told_.all();
    ASSERT_EQ(told.size(), 2U);
    const int grandchild = std::stoi(told[0].substr(2));
    toKill_.push_back(grandchild);
    EXPECT_FALSE(isGone(grandchild));
    EXPECT_EQ(told[1], "X:5");
}

TEST_F(PosixProcessesTest, WhatTheChildStartedEndsWithIt) {
    const auto child = harness_.processes().makeChild();
    ASSERT_TRUE(PosixProcessesHarness::launchScript(*child, "sleep 1000 & echo $! >&2; exec sleep 1000",
                                                    told_.handlers()));
    ASSERT_TRUE(harness_.waitUntil([&] { return told_.all().size() == 1; }));
    const int grandchild = std::stoi(told_.all()[0].substr(2));
    toKill_.push_back(grandchild);
    EXPECT_FALSE(isGone(grandchild));
    child->terminate();
    EXPECT_TRUE(harness_.waitUntil([&] { return told_.ended(); }));
    EXPECT_TRUE(fakes::waitUntil([&] { return isGone(grandchild); }));
}

TEST_F(PosixProcessesTest, ChildLeadsASessionOfItsOwn) {
    const auto child = sleeper();
    toKill_.push_back(child->pid());
    EXPECT_EQ(getsid(child->pid()), child->pid());
}

TEST_F(PosixProcessesTest, ClosedStandardErrorIsNotTheEnd) {
    const auto child = harness_.processes().makeChild();
    ASSERT_TRUE(PosixProcessesHarness::launchScript(*child, "exec 2>&-; exec sleep 1000", told_.handlers()));
    ASSERT_TRUE(fakes::waitUntil([&] { return !descriptors(child->pid()).contains("2"); }));
    EXPECT_TRUE(fakes::staysTrue([&] { return told_.all().empty() && child->isRunning(); }));
    child->terminate();
    EXPECT_TRUE(harness_.waitUntil([&] { return told_.ended(); }));
}

TEST_F(PosixProcessesTest, FloodIsHandedOverPieceByPiece) {
    std::atomic<int> underWay = 0;
    std::atomic<int> mostUnderWay = 0;
    std::atomic<std::size_t> longest = 0;
    std::atomic<long> lines = 0;
    std::atomic<int> status = -1;
    const ProcessHandlers handlers{.standardError =
                                       [&](std::string bytes) {
                                           mostUnderWay = std::max(mostUnderWay.load(), ++underWay);
                                           longest = std::max(longest.load(), bytes.size());
                                           lines += std::ranges::count(bytes, '\n');
                                           harness_.dispatch().main([&] { --underWay; });
                                       },
                                   .exit = [&](int value) { status = value; }};
    const auto child = harness_.processes().makeChild();
    const auto* script =
        "yes 'channel 3: open failed: connect failed: Connection refused' | head -n 100000 >&2";
    ASSERT_TRUE(PosixProcessesHarness::launchScript(*child, script, handlers));
    ASSERT_TRUE(harness_.waitUntil([&] { return status == 0; }));
    EXPECT_EQ(lines, 100'000);
    EXPECT_EQ(mostUnderWay, 1);
    EXPECT_LE(longest, 65536U);
}

TEST_F(PosixProcessesTest, TwoHundredLaunchesHoldTheCallerBriefly) {
    constexpr std::size_t kCount = 200;
    std::atomic<std::size_t> ended = 0;
    std::vector<std::chrono::microseconds> times;
    std::vector<std::shared_ptr<ChildProcess>> children;
    for (std::size_t number = 0; number < kCount; ++number) {
        children.push_back(harness_.processes().makeChild());
        const auto start = std::chrono::steady_clock::now();
        ASSERT_TRUE(children.back()->launch({"/bin/sleep", {"1000"}, {}},
                                            {.standardError = {}, .exit = [&](int) { ++ended; }}));
        times.push_back(
            std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::steady_clock::now() - start));
    }
    for (const auto& child : children) {
        EXPECT_TRUE(child->isRunning());
        child->terminate();
    }
    EXPECT_TRUE(harness_.waitUntil([&] { return ended == kCount; }));
    std::ranges::sort(times);
    RecordProperty("MedianMicroseconds", static_cast<int>(times[kCount / 2].count()));
    RecordProperty("LongestMicroseconds", static_cast<int>(times.back().count()));
    std::printf("launch: median %d us, longest %d us\n", static_cast<int>(times[kCount / 2].count()),
                static_cast<int>(times.back().count()));
    EXPECT_LT(times[kCount / 2], std::chrono::milliseconds(20)) << "generous, for sanitizers and busy machines";
}

TEST_F(PosixProcessesTest, ChildrenDieWithTheirApplication) {
    const ChildLauncher launcher;
    auto application = launcher.launch(FERNWICK_PARENT_PROGRAM, {}, nullptr);
    ASSERT_TRUE(application) << application.error().description;
    toKill_.push_back(application->pid);
    std::string output;
    ASSERT_TRUE(fakes::waitUntil([&] {
        std::array<char, 64> buffer{};
        const auto count = read(application->standardOutput.get(), buffer.data(), buffer.size());
        output.append(buffer.data(), static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
        return output.ends_with('\n');
    }));
    const int child = std::stoi(output);
    toKill_.push_back(child);
    EXPECT_FALSE(isGone(child));
    kill(application->pid, SIGKILL);
    EXPECT_TRUE(fakes::waitUntil([&] { return isGone(child); }));
}

TEST_F(PosixProcessesTest, HandleOutlivesTheProcesses) {
    auto harness = std::make_unique<PosixProcessesHarness>();
    const auto child = harness->processes().makeChild();
    const auto unlaunched = harness->processes().makeChild();
    // The end of the processes asks it to end too, so only one that does not listen is sure to be there still.
    ASSERT_TRUE(PosixProcessesHarness::launchScript(*child, "trap '' TERM; echo deaf >&2; exec sleep 1000",
                                                    told_.handlers()));
    toKill_.push_back(child->pid());
    ASSERT_TRUE(harness->waitUntil([&] { return told_.all().size() == 1; }));
    harness.reset();
    child->terminate();
    EXPECT_TRUE(fakes::staysTrue([&] { return child->isRunning(); }));
    const auto launched = PosixProcessesHarness::launchSleeper(*unlaunched, told_.handlers());
    ASSERT_FALSE(launched);
    EXPECT_EQ(launched.error().code, ECANCELED);
    EXPECT_FALSE(unlaunched->isRunning());
    kill(child->pid(), SIGKILL);
    EXPECT_TRUE(fakes::waitUntil([&] { return !child->isRunning(); }));
    EXPECT_EQ(told_.all(), std::vector<std::string>{"E:deaf\n"});
}

TEST_F(PosixProcessesTest, EndOfTheProcessesAsksTheirChildrenToEnd) {
    auto harness = std::make_unique<PosixProcessesHarness>();
    const auto child = harness->processes().makeChild();
    ASSERT_TRUE(PosixProcessesHarness::launchScript(*child, "sleep 1000 & echo $! >&2; exec sleep 1000",
                                                    told_.handlers()));
    toKill_.push_back(child->pid());
    ASSERT_TRUE(harness->waitUntil([&] { return told_.all().size() == 1; }));
    const int grandchild = std::stoi(told_.all()[0].substr(2));
    toKill_.push_back(grandchild);
    harness.reset();
    EXPECT_TRUE(fakes::waitUntil([&] { return !child->isRunning() && isGone(grandchild); }));
    EXPECT_EQ(told_.all().size(), 1U) << "nobody listens any more";
}

} // namespace fernwick::platform
