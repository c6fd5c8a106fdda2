// The texts of both systems, byte for byte.
#include "platform/linux/LinuxUpdate.h"
#include "platform/macos/MacUpdate.h"
#include "support/FakeHostEnvironment.h"
#include "updating/UpdateInstall.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <unistd.h>

namespace fernwick::platform {
namespace {

constexpr const char* kScript = "/tmp/FernwickUpdate_0/update.sh";

std::string golden(const std::string& name) {
    std::ifstream file(std::string(FERNWICK_UPDATING_GOLDEN) + "/" + name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// Keeps the lines that it is to run.
class RecordingShell final : public AdministratorShell {
public:
    [[nodiscard]] std::expected<void, AdministratorError> run(const std::string& line) override {
        lines.push_back(line);
        return answer;
    }
    std::vector<std::string> lines;
    std::expected<void, AdministratorError> answer;
};

TEST(UpdateScript, OfMacOS) {
    const auto script = macUpdateScript("/Applications/Fernwick.app", "/tmp/FernwickUpdate_0/Fernwick.app");
    EXPECT_EQ(script, golden("mac.sh"));
    EXPECT_EQ(std::ranges::count(script, '\n'), 36);
    EXPECT_FALSE(script.ends_with('\n'));
}

TEST(UpdateScript, OfMacOSAsAdministrator) {
    EXPECT_EQ(macUpdateAppleScript(kScript), golden("mac.applescript"));
}

TEST(UpdateScript, UnpackingOnMacOS) {
    const auto request = macUnpacking("/tmp/F.zip", "/tmp/FernwickUpdate_0");
    EXPECT_EQ(request.executable, "/usr/bin/ditto");
    EXPECT_THAT(request.arguments, testing::ElementsAre("-x", "-k", "/tmp/F.zip", "/tmp/FernwickUpdate_0"));
}

TEST(UpdateScript, LineThatStartsIt) {
    EXPECT_EQ(updateShellLine(kScript), golden("start.sh"));
}

TEST(UpdateScript, OfLinux) {
    EXPECT_EQ(linuxUpdateScript(
                  {.target = "/home/someone/Apps/Fernwick.AppImage", .source = "/tmp/Fernwick-4.0.AppImage"},
                  std::nullopt),
              golden("linux.sh"));
}

TEST(UpdateScript, OfLinuxAsAdministrator) {
    const UpdatePerson person{.user = 1000,
                              .group = 100,
                              .environment = {{"DISPLAY", ":0"},
                                              {"HOME", "/home/o'neil"},
                                              {"LANG", "vi_VN.UTF-8"},
                                              {"QUOTED", "a \"b\" $(c) `T` \\\n e"},
                                              {"BASH_FUNC_x%%", "() { :; }"},
                                              {"-S", "x"},
                                              {"", "x"},
                                              {"1ST", "x"}}};
    EXPECT_EQ(linuxUpdateScript({.target = "/opt/Fernwick.app",
                                 .source = "/tmp/FernwickUpdate_0/Fernwick.app",
                                 .asAdministrator = true},
                                person),
              golden("linux-administrator.sh"));
}

TEST(UpdateScript, OfLinuxDiffersFromMacOSInThreeStepsAlone) {
    const auto mac = macUpdateScript("T", "S");
    const auto linux = linuxUpdateScript({.target = "T", .source = "S"}, std::nullopt);
    const auto headOf = [](const std::string& text) {
        return text.substr(0, text.find("cp -R \"S\" \"T\"\n"));
    };
    const auto tailOf = [](const std::string& text) {
        return text.substr(text.find("    echo \"Open attempt"));
    };
    EXPECT_EQ(headOf(mac), headOf(linux));
    EXPECT_EQ(tailOf(mac), tailOf(linux));
}

TEST(UpdateScript, PathsAreNotEscaped) {
    for (const auto& script :
         {macUpdateScript("/a\"b", "/c`T`d"), linuxUpdateScript({"/a\"b", "/c`T`d"}, {})}) {
        EXPECT_THAT(script, testing::HasSubstr("\nrm -rf \"/a\"b\"\n"));
        EXPECT_THAT(script, testing::HasSubstr("\ncp -R \"/c`T`d\" \"/a\"b\"\n"));
    }
}

TEST(LinuxUpdate, PersonIsTheOneWhoRunsTheApplication) {
    fakes::FakeHostEnvironment host;
    RecordingShell shell;
    const LinuxUpdate update(host, shell);
    EXPECT_THAT(update.script({.target = "/T", .source = "/S"}), testing::Not(testing::HasSubstr("person")));
    const auto script = update.script({.target = "/T", .source = "/S", .asAdministrator = true});
    EXPECT_THAT(script, testing::HasSubstr("\nperson=(setpriv --reuid=" + std::to_string(getuid()) +
                                           " --regid=" + std::to_string(getgid()) + " --init-groups env -i\n"));
    EXPECT_THAT(script, testing::HasSubstr("\nexport '\\''PATH=/usr/bin:/bin'\\''\n"));
}

TEST(LinuxUpdate, ScriptIsStartedByOneLineOfRoots) {
    fakes::FakeHostEnvironment host;
    RecordingShell shell;
    LinuxUpdate update(host, shell);
    EXPECT_TRUE(update.startAsAdministrator("/tmp/o'neil/update.sh"));
    EXPECT_THAT(shell.lines, testing::ElementsAre("rm -f /tmp/fernwick_update.log; "
                                                  "nohup '/tmp/o'\\''neil/update.sh' > /dev/null 2>&1 &"));
    shell.answer = std::unexpected(AdministratorError{kAdministratorCanceled});
    const auto refused = update.startAsAdministrator("/tmp/update.sh");
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.error().message, "User canceled");
}

} // namespace
} // namespace fernwick::platform
