#include "platform/linux/LaunchedProgram.h"

#include <gtest/gtest.h>

namespace fernwick::platform {
namespace {

struct Row {
    const char* name;
    std::vector<std::string> command;
    std::string program; // empty for none
    bool isSandboxed = false;
};

void PrintTo(const Row& row, std::ostream* out) {
    *out << row.name;
}

class LaunchedProgramTable : public testing::TestWithParam<Row> {};

TEST_P(LaunchedProgramTable, FindsWhatRunsInTheEnd) {
    const auto found = launchedProgram(GetParam().command);
    if (GetParam().program.empty()) {
        EXPECT_FALSE(found.has_value());
        return;
    }
    ASSERT_TRUE(found.has_value());
    EXPECT_EQ(*found, (LaunchedProgram{GetParam().program, GetParam().isSandboxed}));
}

const std::vector<Row> kRows{
    {"Plain", {"/usr/bin/foo", "--bar"}, "/usr/bin/foo"},
    {"Nothing", {}, ""},
    {"Empty", {""}, ""},
    {"Folder", {"/usr/bin/"}, ""},
    {"Variable", {"$HOME/foo"}, ""},
    {"Env", {"env", "A=1", "B=/x", "foo", "C=2"}, "foo"},
    {"EnvOptions", {"/usr/bin/env", "-i", "-u", "LANG", "-C", "/tmp", "--", "A=1", "foo"}, "foo"},
    {"EnvSplit", {"env", "-S", "A=1 foo --bar"}, "foo"},
    {"EnvAlone", {"env", "A=1"}, ""},
    {"Shell", {"sh", "-c", "foo %u"}, "foo"},
    {"ShellExec", {"/bin/bash", "-lc", "A=1 exec '/opt/my app/foo' \"$@\""}, "/opt/my app/foo"},
    {"ShellFolder", {"sh", "-c", "cd /opt/foo && ./run --x"}, "./run"},
    {"ShellVariable", {"sh", "-c", "$HOME/foo"}, ""},
    {"ShellEmpty", {"sh", "-c", " ; "}, ""},
    {"ShellNothing", {"sh", "-c"}, ""},
    {"ShellPipe", {"sh", "-c", "foo|bar"}, "foo"},
    {"ShellOpenQuote", {"sh", "-c", "'foo bar"}, "foo bar"},
    {"ShellScript", {"bash", "-e", "/opt/foo/start"}, "/opt/foo/start"},
    {"ShellAlone", {"bash"}, "bash"},
    {"Nice", {"nice", "-n", "5", "foo"}, "foo"},
    {"Pkexec", {"pkexec", "--user", "root", "/usr/sbin/foo"}, "/usr/sbin/foo"},
    {"PkexecNothing", {"pkexec", "--user", "root"}, ""},
    {"PrimeRun", {"prime-run", "env", "A=1", "foo"}, "foo"},
    {"Flatpak",
     {"/usr/bin/flatpak", "run", "--branch=stable", "--command=/app/bin/fox", "org.example.Browser", "@@u"},
     "fox",
     true},
    {"FlatpakById", {"flatpak", "run", "--arch=x86_64", "org.example.GIMP/x86_64/stable"}, "gimp", true},
    {"FlatpakNothing", {"flatpak", "run", "--user"}, ""},
    {"FlatpakNoCommand", {"flatpak", "run", "--command=", "org.example.App"}, ""},
    {"FlatpakOther", {"flatpak", "update"}, "flatpak"},
    {"Endless", std::vector<std::string>(1000, "env"), ""},
};

INSTANTIATE_TEST_SUITE_P(All, LaunchedProgramTable, testing::ValuesIn(kRows),
                         [](const auto& info) { return std::string(info.param.name); });

TEST(LaunchedProgram, BaseNameStandsBehindTheLastSlash) {
    EXPECT_EQ(baseName("/usr/bin/foo"), "foo");
    EXPECT_EQ(baseName("foo"), "foo");
    EXPECT_EQ(baseName("/"), "");
}

} // namespace
} // namespace fernwick::platform
