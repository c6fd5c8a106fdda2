// Administrator rights: the texts of macOS, and pkexec by its exit status.
#include "platform/linux/PkexecShell.h"
#include "platform/macos/AdministratorScript.h"
#include "platform/posix/ShellWord.h"
#include "support/FakeCommandRunner.h"

#include <gtest/gtest.h>

#include <cerrno>

namespace fernwick::platform {

namespace {

struct PkexecRow {
    const char* name;
    fakes::FakeCommandRunner::Answer answer;
    std::optional<std::string> message; // absent: success
};

class PkexecShellRows : public testing::TestWithParam<PkexecRow> {};

} // namespace

TEST(ShellWord, HoldsWhateverTheTextIs) {
    EXPECT_EQ(shellWord("/tmp/x"), "'/tmp/x'");
    EXPECT_EQ(shellWord(""), "''");
    EXPECT_EQ(shellWord("o'neil $HOME \\ \"x\"\n"), "'o'\\''neil $HOME \\ \"x\"\n'");
}

TEST(AdministratorScript, EscapesDoubleQuotesOnly) {
    EXPECT_EQ(administratorScript("cp 'a' 'b' && true"),
              R"(do shell script "cp 'a' 'b' && true" with administrator privileges)");
    EXPECT_EQ(administratorScript(R"(echo "x" '\'' y)"),
              R"(do shell script "echo \"x\" '\'' y" with administrator privileges)");
    EXPECT_EQ(administratorScript(""), R"(do shell script "" with administrator privileges)");
}

TEST_P(PkexecShellRows, TellsWhatHappened) {
    fakes::FakeCommandRunner commands;
    commands.answer("/usr/bin/pkexec", GetParam().answer);
    const auto result = PkexecShell(commands, "/nonexistent/program").run("true && false");
    EXPECT_EQ(result.has_value(), !GetParam().message.has_value());
    if (!result) {
        EXPECT_EQ(result.error().message, GetParam().message);
    }
    const auto requests = commands.requests();
    ASSERT_EQ(requests.size(), 1U);
    EXPECT_EQ(requests[0].arguments, (std::vector<std::string>{"/bin/sh", "-c", "true && false"}));
    EXPECT_EQ(requests[0].timeLimit, std::nullopt);
}

TEST(PkexecShell, RunsThePackagesProgramWhereItIsInstalled) {
    fakes::FakeCommandRunner commands;
    commands.answer("/usr/bin/pkexec", CommandResult{0, "", ""});
    EXPECT_TRUE(PkexecShell(commands, "/bin/true").run("true && false").has_value());
    EXPECT_TRUE(PkexecShell(commands, "/etc/passwd").run("true").has_value()); // cannot be executed
    const auto requests = commands.requests();
    ASSERT_EQ(requests.size(), 2U);
    EXPECT_EQ(requests[0].arguments, (std::vector<std::string>{"/bin/true", "true && false"}));
    EXPECT_EQ(requests[1].arguments, (std::vector<std::string>{"/bin/sh", "-c", "true"}));
}

INSTANTIATE_TEST_SUITE_P(
    All, PkexecShellRows,
    testing::Values(
        PkexecRow{"Done", CommandResult{0, "", "a warning\n"}, std::nullopt},
        PkexecRow{"Dismissed",
                  CommandResult{126, "", "Error executing command as another user: Request dismissed\n"},
                  "User canceled"},
        PkexecRow{"NotAuthorized",
                  CommandResult{127, "", "\nError executing command as another user: Not authorized\n\n"},
                  "Error executing command as another user: Not authorized"},
        PkexecRow{"LineFailed", CommandResult{1, "said on output", " cp: No space left \r\n"},
                  "cp: No space left"},
        PkexecRow{"SaysNothing", CommandResult{3, "", " \n"}, ""},
        PkexecRow{"Killed", CommandResult{9, "", ""}, ""},
        PkexecRow{"Missing", std::unexpected(LaunchError{ENOENT, "No such file or directory"}),
                  "/usr/bin/pkexec: No such file or directory"}),
    [](const auto& row) { return std::string(row.param.name); });

} // namespace fernwick::platform
