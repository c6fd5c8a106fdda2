// What every CommandRunner does, the fake one and the real one.
#pragma once

#include "platform/CommandRunner.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>

namespace fernwick::platform {

// `Harness` has runner(), and expect(request, answer), which tells a fake what the command would do.
template <class Harness>
class CommandRunnerContract : public testing::Test {
protected:
    std::expected<CommandResult, LaunchError> run(const CommandRequest& request,
                                                  const std::expected<CommandResult, LaunchError>& answer) {
        harness_.expect(request, answer);
        return harness_.runner().run(request);
    }

    Harness harness_;
};

TYPED_TEST_SUITE_P(CommandRunnerContract);

TYPED_TEST_P(CommandRunnerContract, TellsStatusAndBothOutputs) {
    const auto result =
        this->run({"/bin/sh", {"-c", "echo out; echo err >&2; exit 3"}}, CommandResult{3, "out\n", "err\n"});
    ASSERT_TRUE(result);
    EXPECT_EQ(result->status, 3);
    EXPECT_EQ(result->standardOutput, "out\n");
    EXPECT_EQ(result->standardError, "err\n");
}

TYPED_TEST_P(CommandRunnerContract, MissingCommandFails) {
    const auto result =
        this->run({"/does/not/exist", {}}, std::unexpected(LaunchError{ENOENT, "No such file or directory"}));
    ASSERT_FALSE(result);
    EXPECT_EQ(result.error().code, ENOENT);
    EXPECT_EQ(result.error().description, "No such file or directory");
}

TYPED_TEST_P(CommandRunnerContract, CommandPastItsTimeIsKilled) {
    const auto result = this->run(
        {"/bin/sh", {"-c", "echo early; exec sleep 1000"}, std::nullopt, std::chrono::milliseconds(100)},
        CommandResult{SIGKILL, "early\n", ""});
    ASSERT_TRUE(result);
    EXPECT_EQ(result->status, SIGKILL);
    EXPECT_EQ(result->standardOutput, "early\n");
}

REGISTER_TYPED_TEST_SUITE_P(CommandRunnerContract, TellsStatusAndBothOutputs, MissingCommandFails,
                            CommandPastItsTimeIsKilled);

} // namespace fernwick::platform
