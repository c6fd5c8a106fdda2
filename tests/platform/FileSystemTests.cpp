#include "platform/posix/PosixFileSystem.h"
#include "support/FakeFileSystem.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <map>
#include <optional>
#include <sys/stat.h>

namespace fernwick::platform {

namespace {

namespace fs = std::filesystem;

struct FakeFilesHarness {
    FileSystem& files() { return fake; }
    [[nodiscard]] std::string path() const { return folderPath() + "/file"; }
    [[nodiscard]] std::string folderPath() const { return "/folder"; }
    [[nodiscard]] std::string read() const { return fake.files.at(path()).bytes; }
    [[nodiscard]] unsigned mode() const { return fake.files.at(path()).mode; }
    [[nodiscard]] bool exists() const { return fake.files.contains(path()); }
    fakes::FakeFileSystem fake;
};

struct PosixFilesHarness {
    FileSystem& files() { return real; }
    [[nodiscard]] std::string path() const { return folder / "file"; }
    [[nodiscard]] std::string folderPath() const { return folder.path(); }
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

// The names and sizes in a listing, sorted.
std::map<std::string, std::optional<std::int64_t>> sizesIn(FileSystem& files, const std::string& folder) {
    std::map<std::string, std::optional<std::int64_t>> sizes;
    for (const auto& entry : files.list(folder).value_or(std::vector<FolderEntry>())) {
        sizes.emplace(entry.name, entry.size);
    }
    return sizes;
}

using Sizes = std::map<std::string, std::optional<std::int64_t>>;

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

TYPED_TEST(FileSystemContract, ListsWhatStandsInAFolderButHiddenThings) {
    auto& harness = this->harness_;
    const auto folder = harness.folderPath();
    for (const auto* name : {"/one", "/Kết nối: 12:30.json", "/.hidden"}) {
        ASSERT_TRUE(harness.files().write(folder + name, "text", kOwnerOnlyFile));
    }
    ASSERT_TRUE(harness.files().write(folder + "/empty", "", kOwnerOnlyFile));
    ASSERT_TRUE(harness.files().makeFolder(folder + "/below"));
    ASSERT_TRUE(harness.files().write(folder + "/below/file", "text", kOwnerOnlyFile));
    auto sizes = sizesIn(harness.files(), folder);
    sizes.erase("below"); // how large a folder is, is the file system's own affair
    EXPECT_EQ(sizes, (Sizes{{"one", 4}, {"Kết nối: 12:30.json", 4}, {"empty", 0}}));
    EXPECT_EQ(sizesIn(harness.files(), folder + "/below"), (Sizes{{"file", 4}}));
}

TYPED_TEST(FileSystemContract, ListsAnEmptyFolderAndNoMissingOne) {
    auto& harness = this->harness_;
    const auto folder = harness.folderPath() + "/below";
    const auto missing = harness.files().list(folder);
    ASSERT_FALSE(missing);
    EXPECT_EQ(missing.error().code, ENOENT);
    EXPECT_EQ(missing.error().description, "No such file or directory");
    ASSERT_TRUE(harness.files().makeFolder(folder));
    EXPECT_EQ(harness.files().list(folder), std::vector<FolderEntry>());
}

TEST(PosixFileSystem, ListsWhenAFileChanged) {
    PosixFilesHarness harness;
    ASSERT_TRUE(harness.files().write(harness.path(), "text", kOwnerOnlyFile));
    // 2001-01-01T00:00:10.5Z, half a second included.
    const std::array<timespec, 2> times{{{978307200, 0}, {978307210, 500'000'000}}};
    ASSERT_EQ(utimensat(AT_FDCWD, harness.path().c_str(), times.data(), 0), 0);
    const auto entries = harness.files().list(harness.folderPath());
    ASSERT_TRUE(entries);
    EXPECT_EQ(*entries, (std::vector<FolderEntry>{{"file", support::Date{10.5}, 4}}));
}

TEST(PosixFileSystem, ListsALinkAsWhatItLeadsTo) {
    PosixFilesHarness harness;
    ASSERT_TRUE(harness.files().write(harness.folder / ".target", "text", kOwnerOnlyFile));
    fs::create_symlink(".target", harness.folder / "link");
    fs::create_symlink("nowhere", harness.folder / "dangling");
    EXPECT_EQ(sizesIn(harness.files(), harness.folderPath()), (Sizes{{"link", 4}, {"dangling", std::nullopt}}));
}

TEST(PosixFileSystem, ListsNoFileAndTenThousandFiles) {
    PosixFilesHarness harness;
    ASSERT_TRUE(harness.files().write(harness.path(), "text", kOwnerOnlyFile));
    const auto listed = harness.files().list(harness.path());
    ASSERT_FALSE(listed);
    EXPECT_EQ(listed.error().code, ENOTDIR);
    for (int number = 0; number < 10'000; ++number) {
        harness.folder.write(std::to_string(number), "");
    }
    EXPECT_EQ(sizesIn(harness.files(), harness.folderPath()).size(), 10'001U);
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
