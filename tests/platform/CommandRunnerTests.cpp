#include "CommandRunnerContract.h"
#include "platform/posix/PosixCommandRunner.h"
#include "support/FakeCommandRunner.h"
#include "support/TemporaryFolder.h"
#include "support/WaitUntil.h"

#include <cstdlib>
#include <filesystem>
#include <thread>

namespace fernwick::platform {

namespace {

struct FakeRunnerHarness {
    CommandRunner& runner() { return fake; }
    void expect(const CommandRequest& request, const fakes::FakeCommandRunner::Answer& answer) {
        fake.answer(request.executable, answer);
    }
    fakes::FakeCommandRunner fake;
};

struct PosixRunnerHarness {
    CommandRunner& runner() { return real; }
    void expect(const CommandRequest& /*request*/, const fakes::FakeCommandRunner::Answer& /*answer*/) const {}
    ChildLauncher launcher;
    PosixCommandRunner real{launcher};
};

CommandRequest script(const std::string& text) {
    return {"/bin/sh", {"-c", text}};
}

} // namespace

INSTANTIATE_TYPED_TEST_SUITE_P(Fake, CommandRunnerContract, FakeRunnerHarness);
INSTANTIATE_TYPED_TEST_SUITE_P(Posix, CommandRunnerContract, PosixRunnerHarness);

TEST(PosixCommandRunner, BothOutputsAreReadWhole) {
    PosixRunnerHarness harness;
    const auto result = harness.real.run(script("head -c 3000000 /dev/zero >&2; head -c 2000000 /dev/zero"));
    ASSERT_TRUE(result);
    EXPECT_EQ(result->standardOutput.size(), 2'000'000U);
    EXPECT_EQ(result->standardError.size(), 3'000'000U);
}

TEST(PosixCommandRunner, GrandchildThatHoldsTheOutputIsNotWaitedFor) {
    PosixRunnerHarness harness;
    const auto result = harness.real.run(script("sleep 1000 & echo $!"));
    ASSERT_TRUE(result);
    EXPECT_EQ(result->status, 0);
    const int grandchild =
        std::atoi(result->standardOutput.c_str()); // NOLINT(cert-err34-c): 0 is refused below
    ASSERT_GT(grandchild, 0);
    EXPECT_EQ(kill(grandchild, SIGKILL), 0);
}

TEST(PosixCommandRunner, EnvironmentIsOursUnlessOneIsGiven) {
    PosixRunnerHarness harness;
    setenv("FERNWICK_TEST_VARIABLE", "ours", 1); // NOLINT(concurrency-mt-unsafe): no other thread runs
    auto request = script("echo \"$FERNWICK_TEST_VARIABLE\"");
    EXPECT_EQ(harness.real.run(request)->standardOutput, "ours\n");
    request.environment = Environment{{"FERNWICK_TEST_VARIABLE", "given"}};
    EXPECT_EQ(harness.real.run(request)->standardOutput, "given\n");
    request.environment = Environment{};
    EXPECT_EQ(harness.real.run(request)->standardOutput, "\n");
}

TEST(PosixCommandRunner, StandardInputIsEmpty) {
    PosixRunnerHarness harness;
    EXPECT_EQ(harness.real.run(script("cat; echo end"))->standardOutput, "end\n");
}

TEST(PosixCommandRunner, AbandonedCommandsEndAndNoneStartsAgain) {
    PosixRunnerHarness harness;
    const fakes::TemporaryFolder folder;
    int status = -1;
    std::thread waiting([&] {
        const auto result = harness.real.run(script("touch '" + (folder / "started") + "'; exec sleep 1000"));
        status = result ? result->status : 0;
    });
    EXPECT_TRUE(fakes::waitUntil([&] { return std::filesystem::exists(folder / "started"); }));
    harness.real.abandonAll();
    waiting.join();
    EXPECT_EQ(status, SIGKILL);
    const auto next = harness.real.run(script("true"));
    ASSERT_FALSE(next);
    EXPECT_EQ(next.error().code, ECANCELED);
}

} // namespace fernwick::platform
