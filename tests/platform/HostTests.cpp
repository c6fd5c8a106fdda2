// The environment, the clocks and the lock file of the system.
#include "platform/posix/InstanceLock.h"
#include "platform/posix/PosixHostEnvironment.h"
#include "platform/posix/SystemClock.h"
#include "support/FakeClock.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

namespace fernwick::platform {

namespace {

struct FolderRow {
    const char* name;
    Environment variables;
    std::string config;
    std::string support;
    std::string temporary;
};

class HostFolders : public testing::TestWithParam<FolderRow> {};

// What stands before "~" in the table's folders.
std::string expand(const std::string& path) {
    const auto account = PosixHostEnvironment(Environment{}).accountHome();
    return path.starts_with('~') ? account + path.substr(1) : path;
}

} // namespace

TEST_P(HostFolders, AreThose) {
    const PosixHostEnvironment host(GetParam().variables);
    EXPECT_EQ(host.configFolder(), expand(GetParam().config));
    EXPECT_EQ(host.supportFolder(), expand(GetParam().support));
    EXPECT_EQ(host.temporaryFolder(), GetParam().temporary);
    EXPECT_FALSE(host.accountHome().empty());
}

TEST(HostAgent, DefaultLeadsToTheSocketOfTheAgent) {
    const fakes::TemporaryFolder folder;
    const PosixHostEnvironment first({{"XDG_DATA_HOME", folder.path()}, {"SSH_AUTH_SOCK", "/run/one"}});
    const auto agent = first.agentFolder();
    ASSERT_TRUE(agent);
    const auto link = std::filesystem::path(*agent) / "default";
    EXPECT_EQ(std::filesystem::read_symlink(link), "/run/one");
    const PosixHostEnvironment second({{"XDG_DATA_HOME", folder.path()}, {"SSH_AUTH_SOCK", "/run/two"}});
    EXPECT_EQ(second.agentFolder(), agent);
    EXPECT_EQ(std::filesystem::read_symlink(link), "/run/two");
}

TEST(HostAgent, ThereIsNoneWithoutASocketOrAFolder) {
    const fakes::TemporaryFolder folder;
    EXPECT_EQ(PosixHostEnvironment(Environment{{"XDG_DATA_HOME", folder.path()}}).agentFolder(), std::nullopt);
    const PosixHostEnvironment nowhere({{"XDG_DATA_HOME", "/proc/nowhere"}, {"SSH_AUTH_SOCK", "/run/one"}});
    EXPECT_EQ(nowhere.agentFolder(), std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, HostFolders,
    testing::Values(
        FolderRow{"Nothing", {}, "~/.config", "~/.local/share/Fernwick", "/tmp"},
        FolderRow{"Home", {{"HOME", "/h/"}}, "/h/.config", "/h/.local/share/Fernwick", "/tmp"},
        FolderRow{"RootAsHome", {{"HOME", "/"}}, "/.config", "/.local/share/Fernwick", "/tmp"},
        FolderRow{"EmptyHome", {{"HOME", ""}}, "~/.config", "~/.local/share/Fernwick", "/tmp"},
        FolderRow{"Xdg",
                  {{"HOME", "/h"}, {"XDG_CONFIG_HOME", "/c"}, {"XDG_DATA_HOME", "/d/"}, {"TMPDIR", "/t/"}},
                  "/c",
                  "/d/Fernwick",
                  "/t"},
        FolderRow{"RelativeXdg",
                  {{"HOME", "/h"}, {"XDG_CONFIG_HOME", "c"}, {"XDG_DATA_HOME", ""}, {"TMPDIR", "t"}},
                  "/h/.config",
                  "/h/.local/share/Fernwick",
                  "/tmp"}),
    [](const auto& row) { return row.param.name; });

TEST(PosixHostEnvironment, VariablesAreTheProcesss) {
    setenv("FERNWICK_TEST_VARIABLE", "a=b", 1); // NOLINT(concurrency-mt-unsafe): no other thread runs
    EXPECT_EQ(PosixHostEnvironment().variables().at("FERNWICK_TEST_VARIABLE"), "a=b");
}

template <class Harness>
class ClockContract : public testing::Test {
protected:
    Harness harness_;
};

TYPED_TEST_SUITE_P(ClockContract);

TYPED_TEST_P(ClockContract, BothClocksGoOn) {
    const Clock& clock = this->harness_.clock();
    const auto uptime = clock.uptime();
    const auto now = clock.now();
    this->harness_.pass(std::chrono::milliseconds(5));
    EXPECT_GE(clock.uptime() - uptime, std::chrono::milliseconds(5));
    EXPECT_GE(clock.now().secondsSinceReference - now.secondsSinceReference, 0.004);
}

TYPED_TEST_P(ClockContract, UptimeNeverGoesBack) {
    const Clock& clock = this->harness_.clock();
    auto last = clock.uptime();
    for (int round = 0; round < 1000; ++round) {
        const auto next = clock.uptime();
        ASSERT_GE(next, last);
        last = next;
    }
}

REGISTER_TYPED_TEST_SUITE_P(ClockContract, BothClocksGoOn, UptimeNeverGoesBack);

struct FakeClockHarness {
    const Clock& clock() { return fake; }
    void pass(Duration duration) { dispatch.advance(duration); }
    fakes::FakeDispatch dispatch;
    fakes::FakeClock fake{dispatch};
};

struct SystemClockHarness {
    const Clock& clock() { return system; }
    void pass(std::chrono::milliseconds duration) const {
        const auto end = std::chrono::steady_clock::now() + duration;
        while (std::chrono::steady_clock::now() < end) {
        }
    }
    SystemClock system;
};

INSTANTIATE_TYPED_TEST_SUITE_P(Fake, ClockContract, FakeClockHarness);
INSTANTIATE_TYPED_TEST_SUITE_P(System, ClockContract, SystemClockHarness);

TEST(SystemClock, TellsTheSystemsTime) {
    const auto before = support::Date::fromSystem(std::chrono::system_clock::now());
    const auto now = SystemClock().now();
    EXPECT_LE(before.secondsSinceReference, now.secondsSinceReference);
    EXPECT_LT(now.secondsSinceReference - before.secondsSinceReference, 60.0);
}

TEST(InstanceLock, OnlyOneHolds) {
    const fakes::TemporaryFolder folder;
    auto first = std::make_unique<InstanceLock>(folder / "a/b/lock");
    InstanceLock second(folder / "a/b/lock");
    EXPECT_EQ(first->take(), InstanceLock::Outcome::held);
    EXPECT_EQ(first->take(), InstanceLock::Outcome::held);
    EXPECT_EQ(second.take(), InstanceLock::Outcome::heldByOther);
    first.reset();
    EXPECT_EQ(second.take(), InstanceLock::Outcome::held);
}

} // namespace fernwick::platform
