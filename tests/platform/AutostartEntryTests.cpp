#include "TestProgram.h"
#include "platform/linux/AutostartEntry.h"
#include "platform/linux/DesktopEntry.h"
#include "platform/posix/PosixFileSystem.h"
#include "support/FakeFileSystem.h"
#include "support/FakeHostEnvironment.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace fernwick::platform {

namespace {

namespace fs = std::filesystem;

constexpr auto kFile = "/home/someone/.config/autostart/com.fernwick.Fernwick.desktop";

struct ArgumentRow {
    const char* name;
    std::string argument;
    std::string quoted;
};

class ExecArgument : public testing::TestWithParam<ArgumentRow> {};

struct ProgramRow {
    const char* name;
    std::string file; // below the test's folder
    bool startsByGlib = true;
};

class StartedProgram : public testing::TestWithParam<ProgramRow> {};

} // namespace

TEST(AutostartEntry, SaysWhatTheDesktopIsToStart) {
    EXPECT_EQ(autostartEntry("/usr/bin/Fernwick"), "[Desktop Entry]\n"
                                                   "Type=Application\n"
                                                   "Name=Fernwick\n"
                                                   "Comment=SSH tunnels in the menu bar\n"
                                                   "Icon=com.fernwick.Fernwick\n"
                                                   "TryExec=/usr/bin/Fernwick\n"
                                                   "Exec=\"/usr/bin/Fernwick\" --hidden\n"
                                                   "Terminal=false\n"
                                                   "StartupNotify=false\n"
                                                   "X-GNOME-Autostart-enabled=true\n");
}

TEST_P(ExecArgument, IsQuoted) {
    EXPECT_EQ(quotedForExec(GetParam().argument), GetParam().quoted);
}

INSTANTIATE_TEST_SUITE_P(
    Arguments, ExecArgument,
    testing::Values(ArgumentRow{"Plain", "/bin/a", R"("/bin/a")"}, ArgumentRow{"Empty", "", R"("")"},
                    ArgumentRow{"Blank", "a b", R"("a b")"}, ArgumentRow{"Quote", R"(a"b)", R"("a\"b")"},
                    ArgumentRow{"Apostrophe", "a'b", R"("a'b")"}, ArgumentRow{"Dollar", "a$b", R"("a\$b")"},
                    ArgumentRow{"Backquote", "a`b", R"("a\`b")"},
                    ArgumentRow{"Backslash", R"(a\b)", R"("a\\b")"}, ArgumentRow{"Percent", "a%u", R"("a%%u")"},
                    ArgumentRow{"Unicode", "Kết nối", R"("Kết nối")"}),
    [](const auto& row) { return row.param.name; });

TEST_P(StartedProgram, IsFoundByValidatorReaderAndDesktop) {
    const fakes::TemporaryFolder folder;
    const auto program = folder / GetParam().file;
    fs::create_directories(fs::path(program).parent_path());
    folder.write(GetParam().file, "#!/bin/sh\nprintf '%s|' \"$@\" >" + (folder / "told") + "\n");
    fs::permissions(program, fs::perms::owner_all);
    PosixFileSystem files;
    fakes::FakeHostEnvironment host;
    host.config = folder / "config";
    ASSERT_TRUE(AutostartEntry(files, host, program).enable());
    const auto file = host.config + "/autostart/com.fernwick.Fernwick.desktop";
    EXPECT_EQ(outputOf("/usr/bin/desktop-file-validate", {file}), "");
    const auto entry = parseDesktopEntry(folder.read("config/autostart/com.fernwick.Fernwick.desktop"), {});
    ASSERT_TRUE(entry);
    EXPECT_EQ(entry->command, (std::vector<std::string>{program, "--hidden"}));
    EXPECT_EQ(entry->tryExec, program);
    EXPECT_TRUE(entry->isShown);
    if (!GetParam().startsByGlib) {
        return;
    }
    static_cast<void>(outputOf("/usr/bin/gio", {"launch", file}));
    EXPECT_TRUE(fakes::waitUntil([&] { return folder.read("told") == "--hidden|"; })) << folder.read("told");
}

INSTANTIATE_TEST_SUITE_P(Paths, StartedProgram,
                         testing::Values(ProgramRow{"Plain", "Fernwick"},
                                         ProgramRow{"Blanks", " two  blanks /Fern wick"},
                                         ProgramRow{"Quotes", R"(a "quoted" 'name'/Fernwick)"},
                                         ProgramRow{"Dollar", "$HOME/$(id)/Fernwick"},
                                         ProgramRow{"Backslash", R"(a\b\\c\n/Fernwick\)"},
                                         ProgramRow{"Backquote", "`id`/Fernwick"},
                                         // GLib 2.74 looks for the program by its escaped name.
                                         ProgramRow{"Percent", "100%/%u%%f/Fernwick%", false},
                                         ProgramRow{"Signs", "a&b;c|d>e#f*g?h~i(j)=k/Fernwick"},
                                         ProgramRow{"Unicode", "Kết nối \U0001F511/Fernwick"}),
                         [](const auto& row) { return row.param.name; });

TEST(AutostartEntry, EnablingWritesTheFileAndDisablingRemovesIt) {
    fakes::FakeFileSystem files;
    const fakes::FakeHostEnvironment host;
    AutostartEntry item(files, host, "/usr/bin/Fernwick");
    EXPECT_TRUE(item.enable());
    EXPECT_TRUE(item.enable());
    EXPECT_EQ(files.files.at(kFile).bytes, autostartEntry("/usr/bin/Fernwick"));
    EXPECT_EQ(files.files.at(kFile).mode, 0600U);
    EXPECT_TRUE(item.disable());
    EXPECT_TRUE(files.files.empty());
    EXPECT_TRUE(item.disable());
}

TEST(AutostartEntry, FailuresAreTold) {
    fakes::FakeFileSystem files;
    const fakes::FakeHostEnvironment host;
    AutostartEntry item(files, host, "/usr/bin/Fernwick");
    files.writeFailure = FileError{28, "No space left on device"};
    EXPECT_EQ(item.enable(), std::unexpected(std::string("No space left on device")));
    files.writeFailure.reset();
    ASSERT_TRUE(item.enable());
    files.undeletable.insert(kFile);
    EXPECT_EQ(item.disable(), std::unexpected(std::string("Permission denied")));
    EXPECT_EQ(AutostartEntry(files, host, "/opt/\xff/Fernwick").enable(),
              std::unexpected(std::string("Invalid or incomplete multibyte or wide character")));
}

TEST(AutostartEntry, FileWhereAFolderShouldBeIsTold) {
    const fakes::TemporaryFolder folder;
    folder.write("config", "no folder");
    PosixFileSystem files;
    fakes::FakeHostEnvironment host;
    host.config = folder / "config";
    AutostartEntry item(files, host, "/usr/bin/Fernwick");
    EXPECT_EQ(item.enable(), std::unexpected(std::string("Not a directory")));
    EXPECT_TRUE(item.disable());
    EXPECT_EQ(folder.read("config"), "no folder");
}

} // namespace fernwick::platform
