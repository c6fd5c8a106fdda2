#include "tunnel/AskpassScripts.h"

#include "platform/posix/PosixCommandRunner.h"
#include "platform/posix/PosixFileSystem.h"
#include "support/FakeDispatch.h"
#include "support/FakeFileSystem.h"
#include "support/FakeHostEnvironment.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <regex>

namespace fernwick {
namespace {

using namespace std::chrono_literals;
using support::Secret;

struct AskpassScriptsTest : testing::Test {
    fakes::FakeDispatch dispatch;
    fakes::FakeFileSystem files;
    fakes::FakeHostEnvironment host;
    std::vector<std::string> failures;
    AskpassScripts scripts{dispatch, files, host,
                           [this](std::string text) { failures.push_back(std::move(text)); }};
};

TEST_F(AskpassScriptsTest, TextIsExactToTheByte) {
    const auto path = scripts.createAskpassScript(Secret("hunter2"));
    EXPECT_EQ(files.files.at(path).bytes,
              "#!/bin/sh\nprintf '%s' \"$(echo 'aHVudGVyMg==' | base64 --decode)\"\n");
}

TEST_F(AskpassScriptsTest, FileIsItsOwnersAloneAndNamedAfresh) {
    host.temporary = "/somewhere/tmp";
    const auto first = scripts.createAskpassScript(Secret("x"));
    const auto second = scripts.createAskpassScript(Secret("x"));
    const std::regex name("/somewhere/tmp/lm_askpass_[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}\\.sh");
    EXPECT_TRUE(std::regex_match(first, name)) << first;
    EXPECT_NE(first, second);
    EXPECT_EQ(files.files.size(), 2U);
    EXPECT_EQ(files.files.at(first).mode, 0700U);
}

TEST_F(AskpassScriptsTest, LivesForThirtySeconds) {
    (void)scripts.createAskpassScript(Secret("x"));
    dispatch.advance(29'999ms);
    EXPECT_EQ(files.files.size(), 1U);
    dispatch.advance(1ms);
    EXPECT_TRUE(files.files.empty());
    using Record = fakes::FakeDispatch::Record;
    EXPECT_THAT(dispatch.records(),
                testing::ElementsAre(Record{Record::Kind::globalAfter, platform::Priority::normal, 30s}));
}

TEST_F(AskpassScriptsTest, RemovalOfAFileThatIsGoneIsSilent) {
    (void)scripts.createAskpassScript(Secret("x"));
    files.files.clear();
    dispatch.advance(31s);
    EXPECT_TRUE(failures.empty());
}

TEST_F(AskpassScriptsTest, FailureToWriteIsToldAndThePathReturned) {
    files.writeFailure = platform::FileError{28, "No space left on device"};
    const auto path = scripts.createAskpassScript(Secret("hunter2"));
    EXPECT_THAT(path, testing::StartsWith("/tmp/lm_askpass_"));
    EXPECT_THAT(failures, testing::ElementsAre("⚠ Không tạo được askpass script: No space left on device"));
    EXPECT_TRUE(files.files.empty());
}

struct SecretRow {
    std::string name;
    std::string secret;
};

class AskpassOutput : public testing::TestWithParam<SecretRow> {};

TEST_P(AskpassOutput, IsTheSecretByteForByte) {
    const fakes::TemporaryFolder folder;
    fakes::FakeDispatch dispatch;
    platform::PosixFileSystem files;
    const platform::ChildLauncher launcher;
    platform::PosixCommandRunner runner(launcher);
    fakes::FakeHostEnvironment host;
    host.temporary = folder.path();
    const AskpassScripts scripts(dispatch, files, host, [](auto&&) { FAIL(); });
    const auto path = scripts.createAskpassScript(Secret(GetParam().secret));
    EXPECT_EQ(std::filesystem::status(path).permissions(), std::filesystem::perms::owner_all);
    const auto result = runner.run({.executable = path, .arguments = {}});
    ASSERT_TRUE(result.has_value());
    EXPECT_EQ(result->standardOutput, GetParam().secret);
    EXPECT_EQ(result->standardError, "");
    dispatch.advance(30s);
    EXPECT_FALSE(std::filesystem::exists(path));
}

INSTANTIATE_TEST_SUITE_P(
    Secrets, AskpassOutput,
    testing::Values(SecretRow{"Plain", "hunter2"}, SecretRow{"SingleQuote", "it's"},
                    SecretRow{"DoubleQuotes", R"("quoted" \ "twice")"}, SecretRow{"Dollar", "$HOME $(id) `id`"},
                    SecretRow{"Blanks", "  two  blanks  "}, SecretRow{"Vietnamese", "mật khẩu của tôi"},
                    SecretRow{"Emoji", "🔑🌙"}, SecretRow{"Percent", "%s%n%d"}, SecretRow{"Dash", "-n -e x"},
                    SecretRow{"Long", std::string(200, 'x') + "y"},
                    SecretRow{"VeryLong", std::string(20'000, 'z')}, SecretRow{"InnerLineFeed", "two\nlines"}),
    [](const auto& row) { return row.param.name; });

} // namespace
} // namespace fernwick
