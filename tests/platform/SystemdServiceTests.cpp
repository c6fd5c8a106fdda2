#include "ServiceChecks.h"
#include "platform/linux/EngineService.h"
#include "platform/linux/PolkitRule.h"
#include "platform/linux/SystemdService.h"
#include "platform/linux/SystemdUnit.h"
#include "platform/posix/AccountName.h"
#include "platform/posix/PosixCommandRunner.h"
#include "platform/posix/PosixFileSystem.h"
#include "platform/posix/ShellWord.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <chrono>
#include <filesystem>

namespace fernwick::platform {

namespace {

using namespace std::chrono_literals;

struct Bench {
    fakes::FakeFileSystem files;
    fakes::FakeCommandRunner commands;
    fakes::FakeHostEnvironment host;
    SystemdService service{files, commands, host, "anna"};
};

class SystemdCheck : public testing::TestWithParam<CheckRow> {};

std::string unitWith(const std::string& old, const std::string& fresh) {
    auto text = systemdUnit(kSampleProgram, "anna");
    return text.replace(text.find(old), old.size(), fresh);
}

std::string unitOf(const std::string& executable, const std::string& user = "anna") {
    return systemdUnit({executable, "/f", "/f/config.yaml"}, user);
}

} // namespace

TEST(SystemdService, InstallLineIsThisText) {
    EXPECT_EQ(systemdInstallLine("/home/o'x/f.service", "anna"),
              "[ -d /run/systemd/system ] || { echo 'systemd does not run on this machine' >&2; exit 1; }; "
              "umask 022 && mkdir -p /etc/polkit-1/rules.d && printf %s " +
                  shellWord(polkitRule("anna")) +
                  " > /etc/polkit-1/rules.d/50-com.fernwick.mihomo.rules.new && "
                  "mv -f /etc/polkit-1/rules.d/50-com.fernwick.mihomo.rules.new "
                  "/etc/polkit-1/rules.d/50-com.fernwick.mihomo.rules && "
                  "cp '/home/o'\\''x/f.service' /etc/systemd/system/com.fernwick.mihomo.service.new && "
                  "chmod 644 /etc/systemd/system/com.fernwick.mihomo.service.new && "
                  "mv -f /etc/systemd/system/com.fernwick.mihomo.service.new "
                  "/etc/systemd/system/com.fernwick.mihomo.service && systemctl daemon-reload");
}

TEST(SystemdService, PrepareWritesIntoTheSupportFolderAndNowhereElse) {
    for (const auto installation : {ServiceInstallation::first, ServiceInstallation::again}) {
        Bench bench;
        const auto prepared = bench.service.prepare(kSampleProgram, installation);
        ASSERT_TRUE(prepared);
        EXPECT_EQ(prepared->temporaryFile, bench.host.support + "/fernwick-mihomo.service");
        EXPECT_EQ(prepared->shellLine, systemdInstallLine(prepared->temporaryFile, "anna"));
        EXPECT_TRUE(bench.files.folders.contains(bench.host.support));
        ASSERT_EQ(bench.files.files.size(), 1U);
        EXPECT_EQ(bench.files.files[prepared->temporaryFile].bytes, systemdUnit(kSampleProgram, "anna"));
        EXPECT_EQ(bench.files.files[prepared->temporaryFile].mode, kOwnerOnlyFile);
        EXPECT_TRUE(bench.commands.requests().empty());
    }
}

TEST(SystemdService, PrepareTellsWhatFailed) {
    Bench bench;
    bench.files.writeFailure = FileError{ENOSPC, "No space left on device"};
    auto prepared = bench.service.prepare(kSampleProgram, ServiceInstallation::first);
    ASSERT_FALSE(prepared);
    EXPECT_EQ(prepared.error().description, "No space left on device");
    bench.files.folderFailure = FileError{EACCES, "Permission denied"};
    prepared = bench.service.prepare(kSampleProgram, ServiceInstallation::first);
    ASSERT_FALSE(prepared);
    EXPECT_EQ(prepared.error().description, "Permission denied");
}

TEST(SystemdService, CallsSystemctlWithoutAPromptAndWithALimit) {
    Bench bench; // systemctl is missing, which nobody minds
    bench.service.restart(kSampleProgram);
    bench.service.terminate();
    EXPECT_EQ(bench.commands.lines(),
              (std::vector<std::string>{
                  "/usr/bin/systemctl --no-ask-password restart com.fernwick.mihomo.service",
                  "/usr/bin/systemctl --no-ask-password kill -s SIGTERM com.fernwick.mihomo.service"}));
    EXPECT_EQ(bench.commands.requests()[0].timeLimit, 30s);
    EXPECT_EQ(bench.commands.requests()[1].timeLimit, 10s);
}

TEST_P(SystemdCheck, FindsThisState) {
    Bench bench;
    place(GetParam(), kSystemdUnit, bench.files);
    EXPECT_EQ(bench.service.check(kSampleProgram.executable), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    All, SystemdCheck,
    testing::Values(
        CheckRow{"Ready", systemdUnit(kSampleProgram, "anna"), {ServiceState::ready}},
        CheckRow{
            "ReadyByHand", "[Service]\nExecStart=/opt/Fernwick/mihomo\nUser = root\n", {ServiceState::ready}},
        CheckRow{"NotInstalled", std::nullopt, {ServiceState::notInstalled}},
        CheckRow{"MissingRoot", unitWith("User=root", "User=mihomo"), {ServiceState::missingRoot}},
        CheckRow{"MissingRootInAComment", unitWith("User=root", "#User=root"), {ServiceState::missingRoot}},
        CheckRow{"CorruptWhenEmpty", "", {ServiceState::corrupt}},
        CheckRow{"CorruptWhenNoUtf8", std::string("ExecStart=/opt/\xff"), {ServiceState::corrupt}},
        CheckRow{.name = "CorruptWhenReadingFails",
                 .text = unitOf("/x"),
                 .expected = {ServiceState::corrupt},
                 .canRead = false},
        CheckRow{.name = "Unreadable",
                 .text = unitOf("/x"),
                 .expected = {ServiceState::unreadable},
                 .mayRead = false},
        CheckRow{"PathChanged", unitOf("/old/mihomo"), {ServiceState::pathChanged, "/old/mihomo"}},
        CheckRow{"PathChangedToALongerOne",
                 unitOf("/opt/Fernwick/mihomo-alpha"),
                 {ServiceState::pathChanged, "/opt/Fernwick/mihomo-alpha"}},
        CheckRow{"PathChangedBehindTheShell",
                 unitOf("/o'neil \"x\" 5%/mihomo"),
                 {ServiceState::pathChanged, "/o'neil \"x\" 5%/mihomo"}},
        CheckRow{"PathUnknown", "[Service]\nUser=root\n", {ServiceState::pathChanged, "unknown"}},
        CheckRow{"InstalledForAnother",
                 unitOf("/opt/Fernwick/mihomo", "bob"),
                 {ServiceState::pathChanged, "/opt/Fernwick/mihomo (bob)"}}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(SystemdService, ChecksWhatItPreparedForAnyPath) {
    for (const auto* path :
         {"/a b/mihomo", "/100%/mihomo", "/o'neil/\"x\"/mihomo", "/a\\b/mihomo", "/$HOME/mihomo"}) {
        Bench bench;
        const auto prepared = bench.service.prepare({path, "/f", "/c"}, ServiceInstallation::first);
        ASSERT_TRUE(prepared);
        bench.files.files[kSystemdUnit] = bench.files.files[prepared->temporaryFile];
        EXPECT_EQ(bench.service.check(path), ServiceCheck{ServiceState::ready}) << path;
    }
}

TEST(SystemdService, PreparedFileIsForTheUserAlone) {
    const fakes::TemporaryFolder folder;
    PosixFileSystem files;
    fakes::FakeCommandRunner commands;
    fakes::FakeHostEnvironment host;
    host.support = folder / "share/Fernwick";
    SystemdService service(files, commands, host, "anna");
    const auto prepared = service.prepare(kSampleProgram, ServiceInstallation::first);
    ASSERT_TRUE(prepared);
    using std::filesystem::perms;
    EXPECT_EQ(std::filesystem::status(host.support).permissions(), perms::owner_all);
    EXPECT_EQ(std::filesystem::status(prepared->temporaryFile).permissions(),
              perms::owner_read | perms::owner_write);
}

TEST(SystemdService, InstallLineStopsWhereSystemdDoesNotRun) {
    if (std::filesystem::exists("/run/systemd/system")) {
        GTEST_SKIP() << "systemd runs here"; // where it does not, the line changes nothing
    }
    const ChildLauncher launcher;
    PosixCommandRunner commands(launcher);
    const auto result = commands.run({"/bin/sh", {"-c", systemdInstallLine("/nowhere", "anna")}});
    ASSERT_TRUE(result);
    EXPECT_EQ(result->status, 1);
    EXPECT_EQ(result->standardError, "systemd does not run on this machine\n");
    EXPECT_FALSE(std::filesystem::exists(kPolkitRule));
}

TEST(EngineService, IsDetachedOnlyForRootWithoutSystemd) {
    EXPECT_EQ(chooseEngineService(true, true), EngineServiceKind::systemd);
    EXPECT_EQ(chooseEngineService(true, false), EngineServiceKind::systemd);
    EXPECT_EQ(chooseEngineService(false, true), EngineServiceKind::detached);
    EXPECT_EQ(chooseEngineService(false, false), EngineServiceKind::systemd);
}

TEST(EngineService, IsSystemdsWhereItRuns) {
    Bench bench;
    bench.files.folders.insert("/run/systemd/system");
    const auto service = makeEngineService(bench.files, bench.commands, bench.host);
    EXPECT_EQ(service->check("/x"), ServiceCheck{ServiceState::notInstalled});
    const auto prepared = service->prepare(kSampleProgram, ServiceInstallation::first);
    ASSERT_TRUE(prepared);
    EXPECT_TRUE(prepared->shellLine.contains("subject.user == " + scriptString(accountName())));
}

} // namespace fernwick::platform
