#include "platform/posix/PosixFileSystem.h"
#include "support/FakeFileSystem.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <sys/stat.h>

namespace fernwick::platform {

namespace {

namespace fs = std::filesystem;

struct FakeFilesHarness {
    FileSystem& files() { return fake; }
    [[nodiscard]] std::string path() const { return "/folder/file"; }
    [[nodiscard]] std::string read() const { return fake.files.at(path()).bytes; }
    [[nodiscard]] unsigned mode() const { return fake.files.at(path()).mode; }
    [[nodiscard]] bool exists() const { return fake.files.contains(path()); }
    fakes::FakeFileSystem fake;
};

struct PosixFilesHarness {
    FileSystem& files() { return real; }
    [[nodiscard]] std::string path() const { return folder / "file"; }
    [[nodiscard]] std::string read() const { return folder.read("file"); }
    [[nodiscard]] unsigned mode() const { return static_cast<unsigned>(fs::status(path()).permissions()); }
    [[nodiscard]] bool exists() const { return fs::exists(path()); }
    fakes::TemporaryFolder folder;
    PosixFileSystem real;
};

template <class Harness>
class FileSystemContract : public testing::Test {
protected:
    Harness harness_;
};

using Harnesses = testing::Types<FakeFilesHarness, PosixFilesHarness>;
TYPED_TEST_SUITE(FileSystemContract, Harnesses);

} // namespace

TYPED_TEST(FileSystemContract, WritesAFileWithItsMode) {
    auto& harness = this->harness_;
    const std::string bytes("one\0two\xff", 8);
    ASSERT_TRUE(harness.files().write(harness.path(), bytes, kOwnerOnlyProgram));
    EXPECT_EQ(harness.read(), bytes);
    EXPECT_EQ(harness.mode(), 0700U);
}

TYPED_TEST(FileSystemContract, ReplacesAFileAndItsMode) {
    auto& harness = this->harness_;
    ASSERT_TRUE(harness.files().write(harness.path(), "a long first text", 0644));
    ASSERT_TRUE(harness.files().write(harness.path(), "second", 0600));
    EXPECT_EQ(harness.read(), "second");
    EXPECT_EQ(harness.mode(), 0600U);
}

TYPED_TEST(FileSystemContract, RemovesAFileOnce) {
    auto& harness = this->harness_;
    ASSERT_TRUE(harness.files().write(harness.path(), "", 0600));
    EXPECT_TRUE(harness.files().remove(harness.path()));
    EXPECT_FALSE(harness.exists());
    const auto again = harness.files().remove(harness.path());
    ASSERT_FALSE(again);
    EXPECT_EQ(again.error().code, ENOENT);
    EXPECT_EQ(again.error().description, "No such file or directory");
}

TYPED_TEST(FileSystemContract, ReadsWhatWasWritten) {
    auto& harness = this->harness_;
    const auto missing = harness.files().read(harness.path());
    ASSERT_FALSE(missing);
    EXPECT_EQ(missing.error().code, ENOENT);
    EXPECT_FALSE(harness.files().exists(harness.path()));
    EXPECT_FALSE(harness.files().isReadable(harness.path()));
    const std::string bytes("one\0two\xff", 8);
    ASSERT_TRUE(harness.files().write(harness.path(), bytes, kOwnerOnlyFile));
    EXPECT_EQ(harness.files().read(harness.path()), bytes);
    EXPECT_TRUE(harness.files().exists(harness.path()));
    EXPECT_TRUE(harness.files().isReadable(harness.path()));
}

TYPED_TEST(FileSystemContract, MakesAFolderAndThoseAboveItOnceAndAgain) {
    auto& harness = this->harness_;
    const auto folder = harness.path() + "/one/two";
    EXPECT_FALSE(harness.files().exists(folder));
    EXPECT_TRUE(harness.files().makeFolder(folder));
    EXPECT_TRUE(harness.files().makeFolder(folder));
    EXPECT_TRUE(harness.files().exists(folder));
}

TYPED_TEST(FileSystemContract, ReplacingKeepsTheModeThatAFileHas) {
    auto& harness = this->harness_;
    ASSERT_TRUE(harness.files().replaceContent(harness.path(), "first", kOwnerOnlyFile));
    EXPECT_EQ(harness.mode(), 0600U);
    ASSERT_TRUE(harness.files().write(harness.path(), "second", 0644));
    ASSERT_TRUE(harness.files().replaceContent(harness.path(), "third", kOwnerOnlyFile));
    EXPECT_EQ(harness.read(), "third");
    EXPECT_EQ(harness.mode(), 0644U);
}

TEST(PosixFileSystem, ReplacingFollowsLinksAndKeepsThem) {
    PosixFilesHarness harness;
    fs::create_directory(harness.folder / "elsewhere");
    fs::create_symlink("second", harness.path());
    fs::create_symlink("elsewhere/hosts", harness.folder / "second");
    for (const char* text : {"made", "and replaced"}) {
        ASSERT_TRUE(harness.files().replaceContent(harness.path(), text, kOwnerOnlyFile));
        EXPECT_TRUE(fs::is_symlink(harness.path()));
        EXPECT_TRUE(fs::is_symlink(harness.folder / "second"));
        EXPECT_EQ(harness.folder.read("elsewhere/hosts"), text);
    }
    EXPECT_EQ(std::distance(fs::directory_iterator(harness.folder / "elsewhere"), {}), 1);
}

TEST(PosixFileSystem, ReplacesNothingButFiles) {
    PosixFilesHarness harness;
    ASSERT_EQ(mkfifo(harness.path().c_str(), 0600), 0);
    const auto pipe = harness.files().replaceContent(harness.path(), "text", kOwnerOnlyFile);
    ASSERT_FALSE(pipe);
    EXPECT_EQ(pipe.error().code, EINVAL);
    EXPECT_TRUE(fs::is_fifo(harness.path()));
    const auto folder = harness.files().replaceContent(harness.folder.path(), "text", kOwnerOnlyFile);
    ASSERT_FALSE(folder);
    EXPECT_EQ(folder.error().code, EISDIR);
}

TEST(PosixFileSystem, ACircleOfLinksIsTold) {
    PosixFilesHarness harness;
    fs::create_symlink("file", harness.path());
    const auto written = harness.files().replaceContent(harness.path(), "text", kOwnerOnlyFile);
    ASSERT_FALSE(written);
    EXPECT_EQ(written.error().code, ELOOP);
    EXPECT_TRUE(fs::is_symlink(harness.path()));
}

TEST(PosixFileSystem, FolderThatIsAFileIsTold) {
    PosixFilesHarness harness;
    ASSERT_TRUE(harness.files().write(harness.path(), "text", kOwnerOnlyFile));
    const auto made = harness.files().makeFolder(harness.path() + "/below");
    ASSERT_FALSE(made);
    EXPECT_EQ(made.error().code, ENOTDIR);
}

TEST(PosixFileSystem, ReadsNoFolder) {
    PosixFilesHarness harness;
    EXPECT_FALSE(harness.files().read(harness.folder.path()));
}

TEST(PosixFileSystem, ModeHoldsWhateverTheProcessMasks) {
    PosixFilesHarness harness;
    const auto before = umask(0777);
    const auto written = harness.files().write(harness.path(), "text", kOwnerOnlyProgram);
    umask(before);
    ASSERT_TRUE(written);
    EXPECT_EQ(harness.mode(), 0700U);
}

TEST(PosixFileSystem, FailureLeavesTheOldFileAndNothingBeside) {
    PosixFilesHarness harness;
    fs::create_directory(harness.path()); // a folder cannot be replaced by a file
    const auto written = harness.files().write(harness.path(), "text", 0600);
    ASSERT_FALSE(written);
    EXPECT_EQ(written.error().code, EISDIR);
    EXPECT_EQ(std::distance(fs::directory_iterator(harness.folder.path()), {}), 1);
}

TEST(PosixFileSystem, MissingFolderIsTold) {
    PosixFilesHarness harness;
    const auto written = harness.files().write(harness.path() + "/below", "text", 0600);
    ASSERT_FALSE(written);
    EXPECT_EQ(written.error().description, "No such file or directory");
}

} // namespace fernwick::platform
