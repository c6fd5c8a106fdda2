#include "ServiceChecks.h"
#include "platform/macos/LaunchdService.h"

#include <gtest/gtest.h>

#include <cerrno>

namespace fernwick::platform {

namespace {

constexpr const char* kGoldenPlist = R"(<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" "http://www.apple.com/DTDs/PropertyList-1.0.dtd">
<plist version="1.0">
<dict>
    <key>Label</key>
    <string>com.fernwick.mihomo</string>
    <key>UserName</key>
    <string>root</string>
    <key>ProgramArguments</key>
    <array>
        <string>/opt/Fernwick/mihomo</string>
        <string>-d</string>
        <string>/home/anna/Fernwick/clash</string>
        <string>-f</string>
        <string>/home/anna/Fernwick/clash/config.yaml</string>
    </array>
    <key>RunAtLoad</key>
    <false/>
    <key>KeepAlive</key>
    <false/>
    <key>StandardOutPath</key>
    <string>/tmp/fernwick-mihomo.log</string>
    <key>StandardErrorPath</key>
    <string>/tmp/fernwick-mihomo.log</string>
</dict>
</plist>)";

constexpr const char* kPlace = "'/Library/LaunchDaemons/com.fernwick.mihomo.plist'";

struct Bench {
    fakes::FakeFileSystem files;
    fakes::FakeCommandRunner commands;
    fakes::FakeHostEnvironment host;
    LaunchdService service{files, commands, host};
};

class LaunchdCheck : public testing::TestWithParam<CheckRow> {};

// The plist with one piece of it replaced.
std::string plistWith(const std::string& old, const std::string& fresh) {
    std::string text = kGoldenPlist;
    return text.replace(text.find(old), old.size(), fresh);
}

std::string plistOf(const std::string& executable) {
    return launchdPlist({executable, "/f", "/f/config.yaml"});
}

} // namespace

TEST(LaunchdService, PlistIsThisText) {
    EXPECT_EQ(launchdPlist(kSampleProgram), kGoldenPlist);
}

TEST(LaunchdService, PathsAreInsertedUnescaped) {
    const auto plist = launchdPlist({"/a & <b>/mihomo", "/c \"d\"", "/e 'f'"});
    EXPECT_TRUE(plist.contains("        <string>/a & <b>/mihomo</string>\n        <string>-d</string>\n"
                               "        <string>/c \"d\"</string>\n        <string>-f</string>\n"
                               "        <string>/e 'f'</string>\n"));
}

TEST(LaunchdService, InstallLineOfAFirstInstallation) {
    EXPECT_EQ(
        launchdInstallLine("/tmp/o'x/f.plist", ServiceInstallation::first),
        "cp '/tmp/o'\\''x/f.plist' '/Library/LaunchDaemons/com.fernwick.mihomo.plist' && chown root:wheel "
        "'/Library/LaunchDaemons/com.fernwick.mihomo.plist' && chmod 644 "
        "'/Library/LaunchDaemons/com.fernwick.mihomo.plist' && launchctl bootstrap system "
        "'/Library/LaunchDaemons/com.fernwick.mihomo.plist'");
}

TEST(LaunchdService, InstallLineOfAnotherInstallationRemovesTheOldOne) {
    EXPECT_EQ(launchdInstallLine("/tmp/f.plist", ServiceInstallation::again),
              std::string("launchctl bootout system/com.fernwick.mihomo 2>/dev/null; rm -f ") + kPlace +
                  " && cp '/tmp/f.plist' " + kPlace + " && chown root:wheel " + kPlace + " && chmod 644 " +
                  kPlace + " && launchctl bootstrap system " + kPlace);
}

TEST(LaunchdService, PrepareWritesTheTemporaryFileAndNothingElse) {
    Bench bench;
    bench.host.temporary = "/var/folders/x/T";
    const auto prepared = bench.service.prepare(kSampleProgram, ServiceInstallation::first);
    ASSERT_TRUE(prepared);
    EXPECT_EQ(prepared->temporaryFile, "/var/folders/x/T/fernwick-mihomo.plist");
    EXPECT_EQ(prepared->shellLine, launchdInstallLine(prepared->temporaryFile, ServiceInstallation::first));
    ASSERT_EQ(bench.files.files.size(), 1U);
    EXPECT_EQ(bench.files.files[prepared->temporaryFile].bytes, kGoldenPlist);
    EXPECT_EQ(bench.files.files[prepared->temporaryFile].mode, kOwnerOnlyFile);
    EXPECT_TRUE(bench.commands.requests().empty());
    const auto again = bench.service.prepare(kSampleProgram, ServiceInstallation::again);
    ASSERT_TRUE(again);
    EXPECT_EQ(again->shellLine, launchdInstallLine(prepared->temporaryFile, ServiceInstallation::again));
}

TEST(LaunchdService, PrepareTellsThatTheDiskIsFull) {
    Bench bench;
    bench.files.writeFailure = FileError{ENOSPC, "No space left on device"};
    const auto prepared = bench.service.prepare(kSampleProgram, ServiceInstallation::first);
    ASSERT_FALSE(prepared);
    EXPECT_EQ(prepared.error().description, "No space left on device");
}

TEST(LaunchdService, CallsLaunchctl) {
    Bench bench; // launchctl is missing, which nobody minds
    bench.service.restart(kSampleProgram);
    bench.service.terminate();
    EXPECT_EQ(bench.commands.lines(),
              (std::vector<std::string>{"/bin/launchctl kickstart -k system/com.fernwick.mihomo",
                                        "/bin/launchctl kill SIGTERM system/com.fernwick.mihomo"}));
    for (const auto& request : bench.commands.requests()) {
        EXPECT_TRUE(request.timeLimit.has_value());
    }
}

TEST_P(LaunchdCheck, FindsThisState) {
    Bench bench;
    place(GetParam(), kLaunchdPlist, bench.files);
    EXPECT_EQ(bench.service.check(kSampleProgram.executable), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    All, LaunchdCheck,
    testing::Values(
        CheckRow{"Ready", kGoldenPlist, {ServiceState::ready}},
        CheckRow{"ReadyByAPathThatContainsIt", plistOf("/opt/Fernwick/mihomo-alpha"), {ServiceState::ready}},
        CheckRow{"NotInstalled", std::nullopt, {ServiceState::notInstalled}},
        CheckRow{"MissingRoot",
                 plistWith("<string>root</string>", "<string>mihomo</string>"),
                 {ServiceState::missingRoot}},
        CheckRow{"CorruptWhenEmpty", "", {ServiceState::corrupt}},
        CheckRow{"CorruptWhenNoUtf8", std::string("<string>/opt/\xff</string>"), {ServiceState::corrupt}},
        CheckRow{.name = "CorruptWhenReadingFails",
                 .text = kGoldenPlist,
                 .expected = {ServiceState::corrupt},
                 .canRead = false},
        CheckRow{.name = "Unreadable",
                 .text = kGoldenPlist,
                 .expected = {ServiceState::unreadable},
                 .mayRead = false},
        CheckRow{"PathChanged", plistOf("/old/mihomo"), {ServiceState::pathChanged, "/old/mihomo"}},
        CheckRow{"PathChangedWithBlanks",
                 "x\n \t<string>/a b/c</string> \t\n<string>/d</string>",
                 {ServiceState::pathChanged, "/a b/c"}},
        CheckRow{"PathUnknown", "<string>relative</string>\n", {ServiceState::pathChanged, "unknown"}},
        CheckRow{"PathUnknownInOneLine",
                 "<array><string>/a</string></array>",
                 {ServiceState::pathChanged, "unknown"}},
        CheckRow{"PathUnknownWithoutAnEnd", "<string>/a\n</string>", {ServiceState::pathChanged, "unknown"}}),
    [](const auto& row) { return std::string(row.param.name); });

} // namespace fernwick::platform
