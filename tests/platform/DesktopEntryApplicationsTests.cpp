#include "platform/linux/DesktopEntryApplications.h"
#include "platform/posix/PosixHostEnvironment.h"
#include "support/FakeHostEnvironment.h"
#include "support/TemporaryFolder.h"
#include "support/Text.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <sys/stat.h>

namespace fernwick::platform {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class DesktopEntryApplicationsTest : public testing::Test {
protected:
    DesktopEntryApplicationsTest() {
        for (const auto* name : {"home/applications", "one/applications", "two/applications", "bin", "lib"}) {
            std::filesystem::create_directories(folder / name);
        }
        host.environment = {{"HOME", folder.path()},
                            {"XDG_DATA_HOME", folder / "home"},
                            {"XDG_DATA_DIRS", (folder / "one") + ":relative:" + (folder / "two")},
                            {"PATH", (folder / "bin") + ":/usr/bin:/bin"}};
    }

    void program(const std::string& name, const std::string& bytes = "\x7f"
                                                                     "ELF") const {
        folder.write(name, bytes);
        std::filesystem::permissions(folder / name, std::filesystem::perms::owner_all);
    }

    void entry(const std::string& file, const std::string& name, const std::string& exec,
               const std::string& more = {}) const {
        folder.write(file, "[Desktop Entry]\nType=Application\nName=" + name + "\nExec=" + exec + "\n" + more);
    }

    // "name=value" of each application.
    [[nodiscard]] std::vector<std::string> listed() const {
        std::vector<std::string> texts;
        for (const auto& application : DesktopEntryApplications(host).list()) {
            texts.push_back(application.name + "=" + application.value);
        }
        return texts;
    }

    fakes::TemporaryFolder folder;
    fakes::FakeHostEnvironment host;
};

TEST_F(DesktopEntryApplicationsTest, ListsByNameWithIcon) {
    program("bin/foo");
    program("bin/bar");
    entry("one/applications/foo.desktop", "foo browser", "foo %u", "Icon=org.example.Foo\n");
    entry("two/applications/bar.desktop", "Bar", (folder / "bin/bar") + " --x");
    EXPECT_THAT(DesktopEntryApplications(host).list(),
                ElementsAre(InstalledApplication{"Bar", "bar", ""},
                            InstalledApplication{"foo browser", "foo", "org.example.Foo"}));
}

TEST_F(DesktopEntryApplicationsTest, LinksAreFollowedToTheExecutable) {
    program("lib/foo.bin");
    std::filesystem::create_symlink("../lib/foo.bin", folder / "bin/foo");
    std::filesystem::create_symlink("foo", folder / "bin/alternative");
    entry("one/applications/foo.desktop", "Foo", "env A=1 alternative");
    EXPECT_THAT(listed(), ElementsAre("Foo=foo.bin"));
}

TEST_F(DesktopEntryApplicationsTest, LinksInCirclesAreLeftOut) {
    std::filesystem::create_symlink("b", folder / "bin/a");
    std::filesystem::create_symlink("a", folder / "bin/b");
    entry("one/applications/a.desktop", "A", "a");
    std::filesystem::create_directory_symlink("..", folder / "one/applications/up");
    std::filesystem::create_symlink("loop.desktop", folder / "one/applications/loop.desktop");
    program("bin/foo");
    entry("one/applications/foo.desktop", "Foo", "foo");
    EXPECT_THAT(listed(), ElementsAre("Foo=foo"));
}

TEST_F(DesktopEntryApplicationsTest, EarlierFolderWinsEvenWhenItHides) {
    program("bin/foo");
    entry("home/applications/a.desktop", "Mine", "foo");
    entry("one/applications/a.desktop", "System's", "foo");
    entry("home/applications/b.desktop", "Hidden", "foo", "Hidden=true\n");
    entry("two/applications/b.desktop", "Shown", "foo");
    std::filesystem::create_symlink("/dev/null", folder / "home/applications/c.desktop");
    entry("two/applications/c.desktop", "Masked", "foo");
    EXPECT_THAT(listed(), ElementsAre("Mine=foo"));
}

TEST_F(DesktopEntryApplicationsTest, FileIdsGoByTheFoldersOnTheWay) {
    program("bin/foo");
    for (const auto* name : {"home/applications/kde/sub", "one/applications/kde"}) {
        std::filesystem::create_directories(folder / name);
    }
    entry("home/applications/kde/sub/a.desktop", "Below", "foo");
    entry("one/applications/kde-sub-a.desktop", "Same id", "foo");
    entry("one/applications/kde/a.desktop", "Other", "foo");
    EXPECT_THAT(listed(), ElementsAre("Below=foo", "Other=foo"));
}

TEST_F(DesktopEntryApplicationsTest, ScriptsGoByTheirInterpreterAndShellScriptsByTheirName) {
    program("lib/snake3.11");
    std::filesystem::create_symlink("../lib/snake3.11", folder / "bin/snake3");
    program("bin/tool", "#!/usr/bin/env snake3\nprint()\n");
    program("bin/split", "#!/usr/bin/env -S snake3 -u\n");
    program("bin/direct", "#! " + (folder / "bin/snake3") + " -E\n");
    program("bin/wrapper", "#!/bin/sh\nexec elsewhere\n");
    program("bin/orphan", "#!/no/such/interpreter\n");
    for (const auto* name : {"tool", "split", "direct", "wrapper", "orphan"}) {
        entry(std::string("one/applications/") + name + ".desktop", name, name);
    }
    EXPECT_THAT(listed(),
                ElementsAre("direct=snake3.11", "split=snake3.11", "tool=snake3.11", "wrapper=wrapper"));
}

TEST_F(DesktopEntryApplicationsTest, SnapsGoByTheirCommand) {
    program("bin/snap");
    std::filesystem::create_symlink("snap", folder / "bin/office.writer");
    std::filesystem::create_symlink("snap", folder / "bin/fox");
    entry("one/applications/a.desktop", "Writer", "env HINT=/x " + (folder / "bin/office.writer") + " %u");
    entry("one/applications/b.desktop", "Fox", "fox");
    EXPECT_THAT(listed(), ElementsAre("Fox=fox", "Writer=writer"));
}

TEST_F(DesktopEntryApplicationsTest, SandboxedOnesNeedNoProgramOutHere) {
    entry("one/applications/a.desktop", "Image Editor", "flatpak run --command=editor org.example.Editor");
    EXPECT_THAT(listed(), ElementsAre("Image Editor=editor"));
}

TEST_F(DesktopEntryApplicationsTest, WhatCannotRunIsLeftOut) {
    program("bin/foo");
    folder.write("bin/plain", "no program");
    std::filesystem::create_directory(folder / "bin/folder");
    entry("one/applications/a.desktop", "No such program", "nowhere");
    entry("one/applications/b.desktop", "Not executable", folder / "bin/plain");
    entry("one/applications/c.desktop", "A folder", "folder");
    entry("one/applications/d.desktop", "Try", "foo", "TryExec=nowhere\n");
    entry("one/applications/e.desktop", "Relative", "bin/foo");
    entry("one/applications/f.desktop", "Service", "foo", "NoDisplay=true\n");
    entry("one/applications/g.desktop", "Tried", "foo", "TryExec=foo\n");
    folder.write("one/applications/h.desktop", "[Desktop Entry]\nType=Application\nName=Without command\n");
    EXPECT_THAT(listed(), ElementsAre("Tried=foo"));
}

TEST_F(DesktopEntryApplicationsTest, NamesAreInTheUsersLanguage) {
    program("bin/foo");
    entry("one/applications/a.desktop", "Browser", "foo", "Name[vi]=Tr\u00ECnh duy\u1EC7t\nName[de]=Netz\n");
    host.environment["LANG"] = "de_DE.UTF-8";
    EXPECT_THAT(listed(), ElementsAre("Netz=foo"));
    host.environment["LC_MESSAGES"] = "vi_VN.UTF-8";
    EXPECT_THAT(listed(), ElementsAre("Tr\u00ECnh duy\u1EC7t=foo"));
    host.environment["LC_ALL"] = "C";
    EXPECT_THAT(listed(), ElementsAre("Browser=foo"));
}

TEST_F(DesktopEntryApplicationsTest, ApplicationWithoutANameIsCalledByItsProgram) {
    program("bin/foo");
    entry("one/applications/a.desktop", "\xFF", "foo");
    EXPECT_THAT(listed(), ElementsAre("foo=foo"));
}

TEST_F(DesktopEntryApplicationsTest, TheSameApplicationTwiceIsListedOnce) {
    program("bin/foo");
    entry("one/applications/a.desktop", "Foo", "foo");
    entry("one/applications/b.desktop", "Foo", "foo --other");
    EXPECT_THAT(listed(), ElementsAre("Foo=foo"));
}

TEST_F(DesktopEntryApplicationsTest, GarbageHugeFilesAndPipesAreLeftOut) {
    program("bin/foo");
    program("bin/new\nline");
    program("bin/\xFF\xFE");
    folder.write("one/applications/garbage.desktop", std::string("\0\x01\xFF[Desktop Entry\n=", 20));
    folder.write("one/applications/empty.desktop", "");
    entry("one/applications/huge.desktop", "Huge", "foo",
          std::string(DesktopEntryApplications::kLargestFile, '#'));
    entry("one/applications/lines.desktop", "Two lines", (folder / "bin/new") + "\\nline");
    entry("one/applications/bytes.desktop", "Bytes", "\xFF\xFE");
    ASSERT_EQ(mkfifo((folder / "one/applications/pipe.desktop").c_str(), 0600), 0);
    EXPECT_THAT(listed(), IsEmpty());
}

TEST_F(DesktopEntryApplicationsTest, TheFileLimitItselfIsAllowed) {
    program("bin/foo");
    const std::string start = "[Desktop Entry]\nType=Application\nName=Big\nExec=foo\n#";
    folder.write("one/applications/big.desktop",
                 start + std::string(DesktopEntryApplications::kLargestFile - start.size(), '#'));
    EXPECT_THAT(listed(), ElementsAre("Big=foo"));
}

TEST_F(DesktopEntryApplicationsTest, MissingFoldersAndVariablesAreSurvived) {
    host.environment = {};
    host.home = folder.path();
    EXPECT_NO_FATAL_FAILURE(static_cast<void>(listed()));
    host.environment["XDG_DATA_DIRS"] = "/no/such/folder:::";
    EXPECT_THAT(listed(), IsEmpty());
}

TEST_F(DesktopEntryApplicationsTest, DataHomeIsBelowHomeByDefault) {
    program("bin/foo");
    std::filesystem::create_directories(folder / ".local/share/applications");
    entry(".local/share/applications/a.desktop", "Mine", "foo");
    host.environment.erase("XDG_DATA_HOME");
    EXPECT_THAT(listed(), ElementsAre("Mine=foo"));
}

// Whatever is installed here: each value is the name of a program, and each application is there once.
TEST(DesktopEntryApplications, ReadsThisMachinesApplications) {
    const PosixHostEnvironment host;
    const auto applications = DesktopEntryApplications(host).list();
    const bool any = std::filesystem::exists("/usr/share/applications");
    EXPECT_EQ(any && applications.empty(), false);
    for (std::size_t at = 0; at < applications.size(); ++at) {
        const auto& application = applications[at];
        EXPECT_FALSE(application.name.empty());
        EXPECT_FALSE(application.value.empty());
        EXPECT_FALSE(application.value.contains('/')) << application.value;
        EXPECT_TRUE(support::isValidUtf8(application.name + application.value));
        EXPECT_TRUE(at == 0 || applications[at - 1] != application) << application.name;
    }
}

} // namespace
} // namespace fernwick::platform
