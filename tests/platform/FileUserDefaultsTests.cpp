#include "platform/posix/FileUserDefaults.h"
#include "platform/posix/PropertyListFile.h"
#include "support/FakeDispatch.h"
#include "support/FakeHostEnvironment.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <sys/resource.h>
#include <sys/stat.h>

namespace fernwick::platform {

namespace {

namespace fs = std::filesystem;

class FileUserDefaultsTest : public testing::Test {
protected:
    [[nodiscard]] std::unique_ptr<FileUserDefaults> open(const std::string& name = "d.plist") {
        return std::make_unique<FileUserDefaults>(dispatch_, folder_ / name);
    }

    // What the file holds, read anew.
    [[nodiscard]] PropertyDictionary stored(const std::string& name = "d.plist") const {
        const auto value = parsePropertyList(folder_.read(name));
        const auto* dictionary = value ? value->as<PropertyDictionary>() : nullptr;
        return dictionary != nullptr ? *dictionary : PropertyDictionary{};
    }

    [[nodiscard]] std::vector<std::string> files() const {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(folder_.path())) {
            names.push_back(entry.path().filename());
        }
        std::ranges::sort(names);
        return names;
    }

    // What `work` says on standard error.
    template <class Action>
    [[nodiscard]] static std::string errorsOf(Action work) {
        testing::internal::CaptureStderr();
        work();
        return testing::internal::GetCapturedStderr();
    }

    void changeAndWait(UserDefaults& defaults, std::int64_t number) {
        defaults.set("number", {number});
        defaults.synchronize();
    }

    fakes::TemporaryFolder folder_;
    fakes::FakeDispatch dispatch_;
};

mode_t modeOf(const std::string& path) {
    struct stat found = {};
    EXPECT_EQ(stat(path.c_str(), &found), 0) << path;
    return found.st_mode & 0777;
}

struct UnreadableRow {
    const char* name;
    std::string bytes;
};

class UnreadableFile : public FileUserDefaultsTest, public testing::WithParamInterface<UnreadableRow> {};

} // namespace

TEST_F(FileUserDefaultsTest, FoldersAndFileAreForTheUserAlone) {
    const auto defaults = open("a/b/d.plist");
    changeAndWait(*defaults, 1);
    EXPECT_EQ(modeOf(folder_ / "a"), 0700U);
    EXPECT_EQ(modeOf(folder_ / "a/b"), 0700U);
    EXPECT_EQ(modeOf(folder_ / "a/b/d.plist"), 0600U);
    EXPECT_TRUE(folder_.read("a/b/d.plist").starts_with("bplist00"));
}

TEST_F(FileUserDefaultsTest, ChangesThatComeDuringAWriteAreWrittenOnce) {
    const auto defaults = open();
    for (std::int64_t number = 0; number < 10; ++number) {
        defaults->set("number", {number});
    }
    EXPECT_EQ(dispatch_.queuedSerial(), 1U);
    dispatch_.runSerial();
    EXPECT_EQ(stored(), (PropertyDictionary{{"number", {std::int64_t{9}}}}));
    EXPECT_EQ(dispatch_.queuedSerial(), 0U);
    dispatch_.advance(FileUserDefaults::kPause);
    defaults->set("number", {std::int64_t{10}});
    EXPECT_EQ(dispatch_.queuedSerial(), 1U);
}

TEST_F(FileUserDefaultsTest, ChangesThatComeSoonAfterAWriteWaitForAPause) {
    const auto defaults = open();
    const auto storedNumber = [&] { return stored().find("number")->second; };
    defaults->set("number", {std::int64_t{0}});
    dispatch_.runSerial();
    defaults->set("number", {std::int64_t{1}});
    defaults->set("number", {std::int64_t{2}});
    EXPECT_EQ(dispatch_.queuedSerial(), 0U);
    dispatch_.advance(FileUserDefaults::kPause - Duration{1});
    EXPECT_EQ(storedNumber(), PropertyValue{std::int64_t{0}});
    dispatch_.advance(Duration{1});
    EXPECT_EQ(storedNumber(), PropertyValue{std::int64_t{2}});
    EXPECT_EQ(dispatch_.pendingTimers(), 1U);
    dispatch_.advance(FileUserDefaults::kPause);
    EXPECT_EQ(dispatch_.pendingTimers() + dispatch_.pendingDelayed(), 0U)
        << "nothing beats while nothing changes";
}

TEST_F(FileUserDefaultsTest, WhoWaitsAndTheEndWaitForNoPause) {
    auto defaults = open();
    changeAndWait(*defaults, 1);
    changeAndWait(*defaults, 2);
    EXPECT_EQ(stored(), (PropertyDictionary{{"number", {std::int64_t{2}}}}));
    defaults->set("number", {std::int64_t{3}});
    defaults.reset();
    EXPECT_EQ(stored(), (PropertyDictionary{{"number", {std::int64_t{3}}}}));
}

TEST_F(FileUserDefaultsTest, LargeValuesCostTheCallerNoCopy) {
    const auto defaults = open();
    const Data large(std::string(6'000'000, 'x'));
    std::vector<std::chrono::nanoseconds> times;
    for (int round = 0; round < 101; ++round) {
        const auto start = std::chrono::steady_clock::now();
        defaults->set("large", {large});
        times.push_back(std::chrono::steady_clock::now() - start);
    }
    std::ranges::sort(times);
    std::printf("set of 6 MB: median %d ns\n", static_cast<int>(times[50].count()));
    EXPECT_LT(times[50], std::chrono::microseconds(100));
    defaults->synchronize();
    EXPECT_EQ(&defaults->data("large")->bytes(), &large.bytes());
}

TEST_F(FileUserDefaultsTest, XmlIsReadAndBinaryWritten) {
    folder_.write("d.plist", R"(<?xml version="1.0" encoding="UTF-8"?><plist version="1.0"><dict>
        <key>number</key><integer>-7</integer><key>list</key><array><true/><string>a &amp; b</string></array>
        <key>bytes</key><data>AP8=</data><key>when</key><date>2001-01-01T00:00:10Z</date></dict></plist>)");
    const auto defaults = open();
    EXPECT_EQ(defaults->value("number"), PropertyValue{std::int64_t{-7}});
    EXPECT_EQ(defaults->value("list"), (PropertyValue{PropertyArray{{true}, {std::string("a & b")}}}));
    EXPECT_EQ(defaults->data("bytes"), Data(std::string("\0\xff", 2)));
    EXPECT_EQ(defaults->value("when"), PropertyValue{support::Date{10.0}});
    changeAndWait(*defaults, 8);
    EXPECT_TRUE(folder_.read("d.plist").starts_with("bplist00"));
    EXPECT_EQ(stored().size(), 4U);
}

TEST_P(UnreadableFile, IsSetAsideBeforeTheFirstWrite) {
    folder_.write("d.plist", GetParam().bytes);
    folder_.write("d.plist.unreadable-1", "earlier");
    const auto errors = errorsOf([&] {
        const auto defaults = open();
        EXPECT_TRUE(defaults->keys().empty());
        EXPECT_EQ(folder_.read("d.plist"), GetParam().bytes);
        changeAndWait(*defaults, 1);
        changeAndWait(*defaults, 2);
    });
    EXPECT_EQ(errors,
              "[UserDefaults] " + (folder_ / "d.plist") +
                  " cannot be read: it is not a property list with a dictionary on top\n[UserDefaults] " +
                  (folder_ / "d.plist") + " was unreadable and is kept as " +
                  (folder_ / "d.plist.unreadable-2") + "\n");
    EXPECT_EQ(folder_.read("d.plist.unreadable-1"), "earlier");
    EXPECT_EQ(folder_.read("d.plist.unreadable-2"), GetParam().bytes);
    EXPECT_EQ(stored(), (PropertyDictionary{{"number", {std::int64_t{2}}}}));
}

INSTANTIATE_TEST_SUITE_P(
    Bytes, UnreadableFile,
    testing::Values(UnreadableRow{"Empty", ""}, UnreadableRow{"Garbage", "no property list"},
                    UnreadableRow{"TruncatedBinary",
                                  encodePropertyList({{"key", {std::string("some value")}}}).substr(0, 40)},
                    UnreadableRow{"TruncatedXml",
                                  "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict><key>a</key>"},
                    UnreadableRow{"ArrayOnTop", "<plist version=\"1.0\"><array><true/></array></plist>"},
                    UnreadableRow{"TextOnTop", "<plist version=\"1.0\"><string>dict</string></plist>"}),
    [](const auto& row) { return row.param.name; });

TEST_F(FileUserDefaultsTest, UnreadableFileStaysWhereItIsWithoutAChange) {
    folder_.write("d.plist", "garbage");
    const auto errors = errorsOf([&] { open().reset(); });
    EXPECT_NE(errors.find("cannot be read"), std::string::npos);
    EXPECT_EQ(files(), std::vector<std::string>{"d.plist"});
}

TEST(FileUserDefaultsProvider, ReadingAnothersDomainTouchesNothing) {
    fakes::FakeDispatch dispatch;
    fakes::FakeHostEnvironment host;
    const fakes::TemporaryFolder folder;
    host.config = folder.path();
    FileUserDefaultsProvider provider(dispatch, host);
    for (const std::string bytes : {"garbage", ""}) {
        folder.write("another.plist", bytes);
        chmod((folder / "another.plist").c_str(), 0444);
        const auto before = fs::last_write_time(folder.path());
        const auto changed = fs::last_write_time(folder / "another.plist");
        testing::internal::CaptureStderr();
        EXPECT_EQ(provider.read("another"), std::nullopt);
        EXPECT_NE(testing::internal::GetCapturedStderr().find("cannot be read"), std::string::npos);
        EXPECT_EQ(folder.read("another.plist"), bytes);
        EXPECT_EQ(modeOf(folder / "another.plist"), 0444U);
        EXPECT_EQ(fs::last_write_time(folder / "another.plist"), changed);
        EXPECT_EQ(fs::last_write_time(folder.path()), before); // nothing beside it either
        fs::remove(folder / "another.plist");
    }
    host.config = folder / "missing";
    EXPECT_EQ(FileUserDefaultsProvider(dispatch, host).read("another"), PropertyDictionary());
    EXPECT_FALSE(fs::exists(host.config));
}

TEST_F(FileUserDefaultsTest, FolderInItsPlaceIsSetAside) {
    fs::create_directory(folder_ / "d.plist");
    const auto errors = errorsOf([&] { changeAndWait(*open(), 1); });
    EXPECT_NE(errors.find("cannot be read: Is a directory"), std::string::npos) << errors;
    EXPECT_TRUE(fs::is_directory(folder_ / "d.plist.unreadable-1"));
    EXPECT_EQ(stored().size(), 1U);
}

TEST_F(FileUserDefaultsTest, FileThatCannotBeSetAsideIsNeverWritten) {
    // The name is as long as a name can be, so none that is longer can be given to it.
    const std::string name = std::string(249, 'd') + ".plist";
    folder_.write(name, "garbage");
    const auto errors = errorsOf([&] {
        const auto defaults = open(name);
        changeAndWait(*defaults, 1);
        changeAndWait(*defaults, 2);
        EXPECT_EQ(defaults->value("number"), PropertyValue{std::int64_t{2}});
    });
    EXPECT_EQ(std::ranges::count(errors, '\n'), 2);
    EXPECT_NE(errors.find("nothing will be written to it: File name too long"), std::string::npos) << errors;
    EXPECT_EQ(folder_.read(name), "garbage");
    EXPECT_EQ(files(), std::vector<std::string>{name});
}

TEST_F(FileUserDefaultsTest, FileWithoutAWriteBitIsLeftAlone) {
    changeAndWait(*open(), 1);
    const auto before = folder_.read("d.plist");
    chmod((folder_ / "d.plist").c_str(), 0444);
    const auto defaults = open();
    const auto errors = errorsOf([&] {
        changeAndWait(*defaults, 2);
        changeAndWait(*defaults, 3);
    });
    EXPECT_EQ(std::ranges::count(errors, '\n'), 1) << errors;
    EXPECT_NE(errors.find("write-protected"), std::string::npos);
    EXPECT_EQ(folder_.read("d.plist"), before);
    chmod((folder_ / "d.plist").c_str(), 0600);
    changeAndWait(*defaults, 4);
    EXPECT_EQ(stored(), (PropertyDictionary{{"number", {std::int64_t{4}}}}));
}

TEST_F(FileUserDefaultsTest, FullDiskLeavesTheOldFileWhole) {
    const auto defaults = open();
    changeAndWait(*defaults, 1);
    const auto before = folder_.read("d.plist");
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit limit{};
    getrlimit(RLIMIT_FSIZE, &limit);
    const auto tight = rlimit{8192, limit.rlim_max};
    const auto errors = errorsOf([&] {
        setrlimit(RLIMIT_FSIZE, &tight);
        defaults->set("large", {Data(std::string(100'000, 'x'))});
        defaults->synchronize();
        changeAndWait(*defaults, 2);
        setrlimit(RLIMIT_FSIZE, &limit);
    });
    EXPECT_EQ(errors, "[UserDefaults] " + (folder_ / "d.plist") + " cannot be written: File too large\n");
    EXPECT_EQ(folder_.read("d.plist"), before);
    EXPECT_EQ(files(), std::vector<std::string>{"d.plist"});
    changeAndWait(*defaults, 3);
    EXPECT_EQ(stored().size(), 2U);
}

TEST_F(FileUserDefaultsTest, FolderThatCannotBeMadeIsToldOnce) {
    folder_.write("file", "no folder");
    const auto errors = errorsOf([&] {
        const auto defaults = open("file/d.plist");
        changeAndWait(*defaults, 1);
        changeAndWait(*defaults, 2);
        EXPECT_EQ(defaults->value("number"), PropertyValue{std::int64_t{2}});
    });
    EXPECT_EQ(errors, "[UserDefaults] " + (folder_ / "file/d.plist") + " cannot be written: Not a directory\n");
}

TEST_F(FileUserDefaultsTest, WhatCouldNotBeWrittenIsTriedOnceMoreAtTheEnd) {
    folder_.write("a", "in the way");
    auto defaults = open("a/d.plist");
    const auto errors = errorsOf([&] { changeAndWait(*defaults, 1); });
    EXPECT_NE(errors.find("cannot be written"), std::string::npos) << errors;
    fs::remove(folder_ / "a");
    defaults.reset();
    EXPECT_EQ(stored("a/d.plist").size(), 1U);
}

TEST_F(FileUserDefaultsTest, LinksAreWrittenThrough) {
    fs::create_directory(folder_ / "dotfiles");
    fs::create_symlink("dotfiles/real.plist", folder_ / "d.plist");
    changeAndWait(*open(), 1);
    EXPECT_TRUE(fs::is_symlink(folder_ / "d.plist"));
    EXPECT_EQ(stored("dotfiles/real.plist").size(), 1U);
    const auto again = open();
    EXPECT_EQ(again->value("number"), PropertyValue{std::int64_t{1}});
    changeAndWait(*again, 2);
    EXPECT_TRUE(fs::is_symlink(folder_ / "d.plist"));
    EXPECT_EQ(files(), (std::vector<std::string>{"d.plist", "dotfiles"}));
}

TEST_F(FileUserDefaultsTest, LinkThatLeadsInACircleIsSetAside) {
    fs::create_symlink("d.plist", folder_ / "d.plist");
    const auto errors = errorsOf([&] { changeAndWait(*open(), 1); });
    EXPECT_NE(errors.find("Too many levels of symbolic links"), std::string::npos) << errors;
    EXPECT_TRUE(fs::is_symlink(folder_ / "d.plist.unreadable-1"));
    EXPECT_EQ(stored().size(), 1U);
}

TEST_F(FileUserDefaultsTest, LeftoversOfKilledWritersGo) {
    folder_.write(".d.plist.tmp-1999999999", "half"); // beyond the largest process id
    folder_.write(".d.plist.tmp-1", "someone's");     // process 1 always runs
    folder_.write(".d.plist.tmp-notes", "the user's");
    folder_.write(".other.plist.tmp-1999999999", "not ours");
    changeAndWait(*open(), 1);
    EXPECT_EQ(files(), (std::vector<std::string>{".d.plist.tmp-1", ".d.plist.tmp-notes",
                                                 ".other.plist.tmp-1999999999", "d.plist"}));
}

} // namespace fernwick::platform
