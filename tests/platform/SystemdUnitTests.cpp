// The texts of systemd and polkit, and systemd's own opinion of them.
#include "ServiceChecks.h"
#include "TestProgram.h"
#include "platform/linux/PolkitRule.h"
#include "platform/linux/SystemdUnit.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace fernwick::platform {

namespace {

constexpr const char* kGoldenUnit = R"(# Written by Fernwick, which starts and stops this service.
[Unit]
Description=Proxy engine of Fernwick
StartLimitIntervalSec=0

[Service]
Type=simple
ExecStart=:"/opt/Fernwick/mihomo" "-d" "/home/anna/Fernwick/clash" "-f" "/home/anna/Fernwick/clash/config.yaml"
User=root
Restart=no
KillMode=mixed
TimeoutStopSec=10
StandardOutput=append:/tmp/fernwick-mihomo.log
StandardError=append:/tmp/fernwick-mihomo.log

[X-Fernwick]
InstalledFor="anna"
)";

struct PathRow {
    const char* name;
    std::string folder;
};

class SystemdPaths : public testing::TestWithParam<PathRow> {};

struct ExecRow {
    const char* name;
    std::string text;
    std::optional<std::string> executable;
};

class SystemdExecStart : public testing::TestWithParam<ExecRow> {};

// What `systemd-analyze verify` says of a unit, with the exit status.
std::string verdict(const fakes::TemporaryFolder& folder, const std::string& unit) {
    folder.write(kSystemdUnitName, unit);
    TestProgram program(
        "/bin/sh", {"-c", "systemd-analyze verify \"$0\" 2>&1; echo \"status $?\"", folder / kSystemdUnitName});
    static_cast<void>(program.wait());
    return program.output();
}

} // namespace

TEST(SystemdUnit, IsThisText) {
    EXPECT_EQ(systemdUnit(kSampleProgram, "anna"), kGoldenUnit);
}

TEST(SystemdUnit, WordsAreQuotedForSystemd) {
    EXPECT_EQ(systemdWord("/usr/bin/mihomo"), "\"/usr/bin/mihomo\"");
    EXPECT_EQ(systemdWord("a b%c$d"), "\"a b%%c$d\"");
    EXPECT_EQ(systemdWord("o'neil \"x\" \\y\n\x7f"), R"("o'neil \"x\" \\y\x0a\x7f")");
    EXPECT_EQ(systemdWord("/Đường"), "\"/Đường\"");
    EXPECT_EQ(systemdWord("/caf\xe9"), "\"/caf\\xe9\"");
}

TEST(SystemdUnit, ExecutableThatSystemdRefusesGoesThroughTheShell) {
    EXPECT_TRUE(systemdUnit({"/o'neil/mihomo", "/f", "/c"}, "anna")
                    .contains("\nExecStart=:/bin/sh -c \"exec \\\"$0\\\" \\\"$@\\\"\" \"/o'neil/mihomo\" "
                              "\"-d\" \"/f\" \"-f\" \"/c\"\n"));
}

TEST(SystemdUnit, VerificationFindsAMissingExecutable) {
    const fakes::TemporaryFolder folder; // so what the paths below prove is not nothing
    const auto missing = folder / "nothing here/mihomo";
    EXPECT_TRUE(verdict(folder, systemdUnit({missing, "/f", "/c"}, "anna")).contains(missing));
}

TEST_P(SystemdPaths, AreAcceptedBySystemdAndReadBack) {
    const fakes::TemporaryFolder folder;
    const auto place = folder / GetParam().folder;
    std::filesystem::create_directory(place);
    std::filesystem::copy_file("/bin/true", place + "/mihomo");
    const auto unit = systemdUnit({place + "/mihomo", place, place + "/config.yaml"}, GetParam().folder);
    EXPECT_EQ(verdict(folder, unit), "status 0\n");
    EXPECT_EQ(readSystemdUnit(unit), (SystemdUnitFacts{place + "/mihomo", true, GetParam().folder}));
}

INSTANTIATE_TEST_SUITE_P(
    All, SystemdPaths,
    testing::Values(PathRow{"Plain", "fernwick"}, PathRow{"Blanks", "my own folder"},
                    PathRow{"Percent", "100%h of %% it"}, PathRow{"Dollar", "$HOME ${HOME} $$"},
                    PathRow{"SingleQuote", "o'neil's"}, PathRow{"DoubleQuote", "the \"real\" one"},
                    PathRow{"Backslash", "a\\b \\x41 \\"}, PathRow{"LineEnd", "two\nlines"},
                    PathRow{"Tab", "a\tb"}, PathRow{"Prefix", "@-:+!"}, PathRow{"Comment", "; # rm"},
                    PathRow{"Utf8", "Đường dẫn 🚀"}, PathRow{"Latin1", "caf\xe9"}),
    [](const auto& row) { return std::string(row.param.name); });

TEST_P(SystemdExecStart, GivesThisExecutable) {
    EXPECT_EQ(readSystemdUnit(GetParam().text).executable, GetParam().executable);
}

INSTANTIATE_TEST_SUITE_P(
    All, SystemdExecStart,
    testing::Values(ExecRow{"Bare", "ExecStart=/usr/bin/mihomo -d /x", "/usr/bin/mihomo"},
                    ExecRow{"Spaced", " ExecStart =  /usr/bin/mihomo \r\n", "/usr/bin/mihomo"},
                    ExecRow{"Prefixes", "ExecStart=-@/usr/bin/mihomo x", "/usr/bin/mihomo"},
                    ExecRow{"QuotedInPart", "ExecStart=/usr/'a b'/\"c\"\\x20d", "/usr/a b/c d"},
                    ExecRow{"FirstOfTwo", "ExecStart=\nExecStart=/a\nExecStart=/b", "/a"},
                    ExecRow{"CommentedOut", "#ExecStart=/a\n;ExecStart=/b\nExecStart=/c", "/c"},
                    ExecRow{"Unbalanced", "ExecStart=\"/a b", "/a b"},
                    ExecRow{"EndsInABackslash", "ExecStart=/a\\", "/a\\"},
                    ExecRow{"ShortEscape", "ExecStart=/a\\x4", "/ax4"},
                    ExecRow{"AnyShellIsTheShell", "ExecStart=/bin/sh -c true x", "/bin/sh"},
                    ExecRow{"Relative", "ExecStart=mihomo -d", std::nullopt},
                    ExecRow{"OnlyPrefixes", "ExecStart=@@", std::nullopt},
                    ExecRow{"OtherKey", "ExecStartPre=/a\nnonsense", std::nullopt}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(PolkitRule, IsThisText) {
    EXPECT_EQ(polkitRule("anna"),
              R"(// Installed by Fernwick: one user starts and stops its proxy engine without a prompt.
polkit.addRule(function(action, subject) {
    if (action.id == "org.freedesktop.systemd1.manage-units" &&
        action.lookup("unit") == "com.fernwick.mihomo.service" &&
        ["start", "stop", "restart", "kill"].indexOf(action.lookup("verb")) >= 0 &&
        subject.user == "anna") {
        return polkit.Result.YES;
    }
    return polkit.Result.NOT_HANDLED;
});
)");
}

TEST(PolkitRule, UserStaysInItsString) {
    EXPECT_EQ(scriptString("a\"||true||\"\\\n\x7f"), R"("a\u0022||true||\u0022\u005c\u000a\u007f")");
    EXPECT_EQ(scriptString("Đan\u2028\u2029*/"), "\"Đan\\u2028\\u2029*/\"");
    EXPECT_TRUE(polkitRule("x\") || (\"").contains("subject.user == \"x\\u0022) || (\\u0022\") {"));
}

} // namespace fernwick::platform
