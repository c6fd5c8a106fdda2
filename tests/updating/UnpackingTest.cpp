// Archives that mean harm, and the real tool: nothing is written outside of the working folder.
#include "platform/linux/LinuxUpdate.h"
#include "platform/posix/PosixCommandRunner.h"
#include "support/FakeHostEnvironment.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <sys/stat.h>

namespace fernwick::platform {
namespace {

namespace fs = std::filesystem;

class NoShell final : public AdministratorShell {
public:
    [[nodiscard]] std::expected<void, AdministratorError> run(const std::string& /*line*/) override {
        return std::unexpected(AdministratorError{});
    }
};

class Unpacking : public testing::Test {
protected:
    Unpacking() {
        fs::create_directories(folder_ / "work");
        fs::create_directories(folder_ / "outside");
        folder_.write("outside/victim", "precious");
    }

    // Makes the archive by lines of Python, in which `add(name, bytes, mode)` adds an item with these bits of
    // st_mode, and unpacks it.
    void unpack(const std::string& lines) {
        folder_.write("make.py", "import sys, zipfile\n"
                                 "folder, archive = sys.argv[1:]\n"
                                 "made = zipfile.ZipFile(archive, 'w')\n"
                                 "def add(name, data, mode=0o100644):\n"
                                 "    info = zipfile.ZipInfo(name)\n"
                                 "    info.create_system = 3\n"
                                 "    info.external_attr = mode << 16\n"
                                 "    made.writestr(info, data)\n" +
                                     lines + "\nmade.close()\n");
        const auto made = runner_.run({.executable = "/usr/bin/python3",
                                       .arguments = {"-B", folder_ / "make.py", folder_.path(), archive()}});
        ASSERT_TRUE(made && made->status == 0) << (made ? made->standardError : made.error().description);
        run();
    }

    void run() {
        const auto run = runner_.run(update_.unpacking(archive(), folder_ / "work"));
        ASSERT_TRUE(run) << run.error().description;
        status_ = run->status;
        said_ = run->standardError;
    }

    // What lies outside of the working folder, but for what the test itself made.
    [[nodiscard]] std::size_t strangers() const {
        std::size_t count = 0;
        for (const auto& entry : fs::recursive_directory_iterator(folder_.path())) {
            const auto path = entry.path().string();
            count += !path.starts_with(folder_ / "work") && path != archive() && path != folder_ / "make.py" &&
                             path != folder_ / "outside" && path != folder_ / "outside/victim"
                         ? 1
                         : 0;
        }
        return count;
    }

    [[nodiscard]] std::string archive() const { return folder_ / "F.zip"; }
    [[nodiscard]] static unsigned modeOf(const std::string& path) {
        struct stat found = {};
        return lstat(path.c_str(), &found) == 0 ? found.st_mode & 07777U : 0U;
    }

    fakes::TemporaryFolder folder_;
    fakes::FakeHostEnvironment host_;
    NoShell shell_;
    LinuxUpdate update_{host_, shell_};
    ChildLauncher launcher_;
    PosixCommandRunner runner_{launcher_};
    int status_ = -1;
    std::string said_;
};

TEST_F(Unpacking, ProperArchiveComesWhole) {
    unpack("add('Fernwick.app/Fernwick', '#!/bin/sh', 0o100755)\n"
           "add('Fernwick.app/share/t\xc3\xaan.txt', 'text')\n"
           "add('Fernwick.app/link', 'Fernwick', 0o120777)");
    EXPECT_EQ(status_, 0);
    EXPECT_EQ(folder_.read("work/Fernwick.app/Fernwick"), "#!/bin/sh");
    EXPECT_EQ(folder_.read("work/Fernwick.app/share/t\xc3\xaan.txt"), "text");
    EXPECT_EQ(fs::read_symlink(folder_ / "work/Fernwick.app/link"), "Fernwick");
    EXPECT_EQ(modeOf(folder_ / "work/Fernwick.app/Fernwick") & 0700U, 0700U);
}

TEST_F(Unpacking, PathUpwardsIsRefused) {
    unpack("add('../x', 'x')\nadd('a/../../y', 'y')\nadd('Fernwick.app/Fernwick', 'new')");
    EXPECT_NE(status_, 0);
    EXPECT_EQ(strangers(), 0U);
    EXPECT_EQ(folder_.read("work/Fernwick.app/Fernwick"), "new") << "the rest is there";
}

TEST_F(Unpacking, AbsolutePathLosesItsSlash) {
    unpack("add(folder + '/x', 'x')\nadd('//' + folder + '/y', 'y')");
    EXPECT_EQ(strangers(), 0U);
    EXPECT_EQ(folder_.read("work" + folder_.path() + "/x"), "x");
}

TEST_F(Unpacking, NothingIsWrittenThroughALink) {
    unpack("add('a', folder + '/outside', 0o120777)\nadd('a/x', 'x')\nadd('a/victim', 'x')\n"
           "add('b', '../outside', 0o120777)\nadd('b/y', 'y')\n"
           "add('c', folder + '/outside/victim', 0o120777)\nadd('c', 'over')");
    EXPECT_EQ(strangers(), 0U);
    EXPECT_EQ(folder_.read("outside/victim"), "precious");
}

TEST_F(Unpacking, HardLinkToTheOutsideIsNotMade) {
    // A zip file has no hard links, but the tool looks at the bytes and not at the name.
    folder_.write("make.py",
                  "import io, sys, tarfile\n"
                  "made = tarfile.open(sys.argv[2], 'w')\n"
                  "for name, target in (('h', sys.argv[1] + '/outside/victim'), ('i', '../outside/victim')):\n"
                  "    info = tarfile.TarInfo(name)\n"
                  "    info.type, info.linkname = tarfile.LNKTYPE, target\n"
                  "    made.addfile(info)\n"
                  "    info = tarfile.TarInfo(name)\n"
                  "    info.size = 4\n"
                  "    made.addfile(info, io.BytesIO(b'over'))\n"
                  "made.close()\n");
    ASSERT_TRUE(runner_.run({.executable = "/usr/bin/python3",
                             .arguments = {"-B", folder_ / "make.py", folder_.path(), archive()}}));
    run();
    EXPECT_EQ(strangers(), 0U);
    EXPECT_EQ(folder_.read("outside/victim"), "precious");
    EXPECT_EQ(fs::hard_link_count(folder_ / "outside/victim"), 1U);
}

TEST_F(Unpacking, BitsThatGiveRightsAreDropped) {
    unpack("add('Fernwick.app/Fernwick', 'x', 0o107777)\nadd('Fernwick.app/shared/', '', 0o043777)");
    EXPECT_EQ(modeOf(folder_ / "work/Fernwick.app/Fernwick") & 07022U, 0U);
    EXPECT_EQ(modeOf(folder_ / "work/Fernwick.app/shared") & 07022U, 0U);
}

TEST_F(Unpacking, NobodyIsAskedForThePasswordOfAnEncryptedArchive) {
    folder_.write("Fernwick.app", "new");
    const auto made =
        runner_.run({.executable = "/usr/bin/bsdtar",
                     .arguments = {"--format", "zip", "--options", "zip:encryption=zipcrypt", "--passphrase",
                                   "secret", "-cf", archive(), "-C", folder_.path(), "Fernwick.app"}});
    ASSERT_TRUE(made && made->status == 0) << (made ? made->standardError : made.error().description);
    run();
    EXPECT_NE(status_, 0);
    EXPECT_FALSE(said_.contains("Enter passphrase")) << said_.substr(0, 100);
    EXPECT_TRUE(said_.contains("Incorrect passphrase")) << said_.substr(0, 100);
}

TEST_F(Unpacking, WhatIsNoArchiveGivesNothing) {
    for (const char* bytes : {"", "<html>404</html>", "PK\x03\x04 and no more"}) {
        folder_.write("F.zip", bytes);
        run();
        EXPECT_TRUE(fs::is_empty(folder_ / "work")) << bytes;
    }
}

} // namespace
} // namespace fernwick::platform
