#include "FileItemsContract.h"
#include "PrivateMounts.h"
#include "platform/posix/PosixFileItems.h"
#include "support/FakeFileItems.h"
#include "support/TemporaryFolder.h"
#include "support/WaitUntil.h"

#include <fmt/format.h>

#include <array>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>

namespace fernwick::platform {

namespace {

namespace fs = std::filesystem;

struct FakeItemsHarness {
    FileItems& items() { return fake; }
    std::string operator/(const std::string& name) const { return "/top/" + name; }
    void folder(const std::string& name) { disk.folders.insert(*this / name); }
    void file(const std::string& name, const std::string& bytes, unsigned mode, int time) {
        disk.files.insert_or_assign(*this / name, fakes::FakeFileSystem::File{bytes, mode});
        disk.modified.insert_or_assign(*this / name, support::Date{static_cast<double>(time)});
    }
    void link(const std::string& name, const std::string& target) { disk.links.emplace(*this / name, target); }
    void makeSpecial(const std::string& name) { fake.special.insert(*this / name); }
    ItemsBelow all() {
        ItemsBelow all;
        const auto below = [](const std::string& path) { return path.substr(5); };
        for (const auto& path : disk.folders) {
            all.emplace(below(path), "folder");
        }
        for (const auto& [path, file] : disk.files) {
            const auto time = disk.modified.at(path).secondsSinceReference;
            all.emplace(below(path), fmt::format("{:o} {} {}", file.mode, time, file.bytes));
        }
        for (const auto& [path, target] : disk.links) {
            all.emplace(below(path), "link to " + target);
        }
        for (const auto& path : fake.special) {
            all.emplace(below(path), "special");
        }
        return all;
    }
    fakes::FakeFileSystem disk;
    fakes::FakeFileItems fake{disk};
};

constexpr time_t k2001 = 978307200; // in seconds since 1970

struct PosixItemsHarness {
    FileItems& items() { return real; }
    std::string operator/(const std::string& name) const { return top / name; }
    void folder(const std::string& name) const { fs::create_directory(*this / name); }
    void file(const std::string& name, const std::string& bytes, mode_t mode, int time) const {
        top.write(name, bytes);
        chmod((*this / name).c_str(), mode);
        const std::array<timespec, 2> times{{{k2001, 0}, {k2001 + time, 0}}};
        utimensat(AT_FDCWD, (*this / name).c_str(), times.data(), 0);
    }
    void link(const std::string& name, const std::string& target) const {
        fs::create_symlink(target, *this / name);
    }
    void makeSpecial(const std::string& name) const { mkfifo((*this / name).c_str(), 0600); }
    [[nodiscard]] std::string describe(const std::string& path) const {
        struct stat status = {};
        lstat((*this / path).c_str(), &status);
        if (S_ISDIR(status.st_mode)) {
            return "folder";
        }
        if (S_ISLNK(status.st_mode)) {
            return "link to " + fs::read_symlink(*this / path).string();
        }
        return S_ISREG(status.st_mode) ? fmt::format("{:o} {} {}", status.st_mode & 07777U,
                                                     status.st_mtim.tv_sec - k2001, top.read(path))
                                       : "special";
    }
    [[nodiscard]] ItemsBelow all() const {
        ItemsBelow all;
        for (const auto& entry : fs::recursive_directory_iterator(top.path())) {
            const auto path = entry.path().lexically_relative(top.path()).string();
            all.emplace(path, describe(path));
        }
        return all;
    }
    fakes::TemporaryFolder top;
    PosixFileItems real;
};

timespec modifiedAt(const std::string& path) {
    struct stat status = {};
    lstat(path.c_str(), &status);
    return status.st_mtim;
}

// How many items stand in a folder; none when it is not there, or goes meanwhile.
std::ptrdiff_t holds(const std::string& folder) {
    std::error_code gone;
    std::ptrdiff_t count = 0;
    for (fs::directory_iterator place(folder, gone), end; !gone && place != end; place.increment(gone)) {
        ++count;
    }
    return count;
}

} // namespace

using ItemsHarnesses = testing::Types<FakeItemsHarness, PosixItemsHarness>;
INSTANTIATE_TYPED_TEST_SUITE_P(Items, FileItemsContract, ItemsHarnesses);

TEST(FakeFileItems, FailsOnCommand) {
    FakeItemsHarness harness;
    harness.folder("old");
    harness.file("old/file", "text", 0600, 1);
    harness.fake.failures.emplace("/top/old/file", FileError{28, "No space left on device"});
    const auto copied = harness.items().copy("/top/old", "/top/new");
    ASSERT_FALSE(copied);
    EXPECT_EQ(copied.error().description, "No space left on device");
    harness.fake.failures.emplace("/top/old", FileError{13, "Permission denied"});
    EXPECT_FALSE(harness.items().names("/top/old"));
    harness.fake.unwritable.insert("/top/old");
    EXPECT_FALSE(harness.items().isWritable("/top/old"));
    harness.fake.order["/top"] = {"z", "a"};
    harness.disk.folders.insert("/top");
    EXPECT_EQ(harness.items().names("/top"), (std::vector<std::string>{"z", "a"}));
}

TEST(PosixFileItems, KeepsPermissionsAndTimesOfFoldersAndLinks) {
    PosixItemsHarness harness;
    harness.folder("old");
    harness.folder("old/sealed");
    harness.link("old/link", "sealed");
    chmod((harness / "old/sealed").c_str(), 0500);
    const std::array<timespec, 2> times{{{k2001, 0}, {k2001, 123'456'789}}};
    for (const auto* name : {"old/sealed", "old/link", "old"}) {
        ASSERT_EQ(utimensat(AT_FDCWD, (harness / name).c_str(), times.data(), AT_SYMLINK_NOFOLLOW), 0);
    }
    const auto before = umask(0777);
    const auto copied = harness.items().copy(harness / "old", harness / "new");
    umask(before);
    ASSERT_TRUE(copied) << copied.error().description;
    EXPECT_EQ(fs::status(harness / "new/sealed").permissions(), fs::perms::owner_read | fs::perms::owner_exec);
    for (const auto* name : {"new/sealed", "new/link", "new"}) {
        EXPECT_EQ(modifiedAt(harness / name).tv_sec, k2001) << name;
        EXPECT_EQ(modifiedAt(harness / name).tv_nsec, 123'456'789) << name;
    }
}

TEST(PosixFileItems, CopiesLargeFilesAndLongNames) {
    PosixItemsHarness harness;
    const std::string bytes(1'000'003, 'x');
    std::string longest;
    while (longest.size() + 3 <= 255) {
        longest += "ế"; // three bytes
    }
    harness.folder("old");
    harness.file("old/" + longest, bytes, 0600, 5);
    ASSERT_TRUE(harness.items().copy(harness / ("old/" + longest), harness / longest));
    EXPECT_EQ(harness.top.read(longest), bytes);
}

TEST(PosixFileItems, WhatKilledCopiesLeftGoesWithTheNextOne) {
    PosixItemsHarness harness;
    harness.file("file", "text", 0600, 1);
    harness.folder(".new.tmp-1999999999"); // beyond the largest process id
    harness.folder(".new.tmp-1999999999/below");
    harness.file(".new.tmp-1999999999/below/half", "ha", 0600, 1);
    chmod((harness / ".new.tmp-1999999999/below").c_str(), 0500);
    harness.file(".new.tmp-" + std::to_string(getpid()), "of our number", 0600, 1);
    harness.file(".new.tmp-1", "of a process that runs", 0600, 1);
    harness.file(".other.tmp-1999999999", "of another path", 0600, 1);
    ASSERT_TRUE(harness.items().copy(harness / "file", harness / "new"));
    EXPECT_EQ(harness.all(), (ItemsBelow{{"file", "600 1 text"},
                                         {"new", "600 1 text"},
                                         {".new.tmp-1", "600 1 of a process that runs"},
                                         {".other.tmp-1999999999", "600 1 of another path"}}));
}

TEST(PosixFileItems, AKilledCopyIsWholeOrNotThere) {
    PosixItemsHarness harness;
    harness.folder("old");
    for (int number = 0; number < 500; ++number) {
        harness.file("old/" + std::to_string(number), std::string(2'000, 'x'), 0600, 1);
    }
    for (const std::ptrdiff_t reached : {1, 100, 250, 400, 499, 500}) {
        const auto child = fork();
        if (child == 0) {
            _exit(harness.items().copy(harness / "old", harness / "new") ? 0 : 1);
        }
        const auto half = harness / (".new.tmp-" + std::to_string(child));
        EXPECT_TRUE(fakes::waitUntil([&] { return holds(half) >= reached || fs::exists(harness / "new"); }));
        kill(child, SIGKILL);
        ASSERT_EQ(waitpid(child, nullptr, 0), child);
        if (fs::exists(harness / "new")) {
            EXPECT_EQ(holds(harness / "new"), 500);
            fs::remove_all(harness / "new");
        }
    }
    ASSERT_TRUE(harness.items().copy(harness / "old", harness / "new"));
    EXPECT_EQ(holds(harness.top.path()), 2); // nothing hidden is left
}

// On a thread of its own, which alone sees the disks.
TEST(PosixFileItems, AFullDiskLeavesNothing) {
    std::jthread([] {
        PrivateMounts mounts;
        PosixItemsHarness harness;
        harness.folder("old");
        harness.file("old/a", "text", 0600, 1);
        harness.file("old/b", std::string(200'000, 'x'), 0600, 1);
        harness.folder("disk");
        mounts.mountDisk(harness / "disk", 100'000);
        for (const auto* name : {"old", "old/b"}) {
            const auto copied = harness.items().copy(harness / name, harness / "disk/new");
            ASSERT_FALSE(copied);
            EXPECT_EQ(copied.error().description, "No space left on device");
            const auto moved = harness.items().move(harness / name, harness / "disk/new");
            ASSERT_FALSE(moved);
            EXPECT_EQ(moved.error().code, ENOSPC);
            EXPECT_TRUE(fs::is_empty(harness / "disk"));
            EXPECT_TRUE(fs::exists(harness / "old/b"));
        }
    }).join();
}

TEST(PosixFileItems, MovesToAnotherDisk) {
    std::jthread([] {
        PrivateMounts mounts;
        PosixItemsHarness harness;
        harness.folder("disk");
        mounts.mountDisk(harness / "disk", 100'000);
        harness.folder("old");
        harness.file("old/file", "text", 0640, 9);
        harness.link("old/link", "file");
        ASSERT_TRUE(harness.items().move(harness / "old", harness / "disk/new"));
        EXPECT_EQ(harness.all(), (ItemsBelow{{"disk", "folder"},
                                             {"disk/new", "folder"},
                                             {"disk/new/file", "640 9 text"},
                                             {"disk/new/link", "link to file"}}));
        mounts.setReadOnly(harness / "disk", true);
        EXPECT_FALSE(harness.items().isWritable(harness / "disk"));
        EXPECT_FALSE(harness.items().isWritable(harness / "disk/new/file"));
        EXPECT_FALSE(harness.items().remove(harness / "disk/new"));
        mounts.setReadOnly(harness / "disk", false);
    }).join();
}

// Somebody lets a folder and a link change places all the time, as they may in a folder of theirs.
TEST(PosixFileItems, RemovingFollowsNoLinkThatTakesAFoldersPlace) {
    const PosixItemsHarness harness;
    harness.folder("elsewhere");
    harness.file("elsewhere/precious", "text", 0600, 1);
    harness.link("link", "elsewhere");
    const auto inside = harness / "old/a";
    const auto link = harness / "link";
    std::jthread attacker([&](const std::stop_token& stop) {
        while (!stop.stop_requested()) {
            renameat2(AT_FDCWD, inside.c_str(), AT_FDCWD, link.c_str(), RENAME_EXCHANGE);
        }
    });
    PosixFileItems items;
    for (int round = 0; round < 10'000 && fs::exists(harness / "elsewhere/precious"); ++round) {
        std::error_code ignored; // of what the attacker has just moved
        fs::create_directories(inside, ignored);
        (void)items.remove(harness / "old");
        if (!fs::is_symlink(link, ignored)) {
            (void)items.remove(link);
            fs::create_symlink("elsewhere", link, ignored);
        }
    }
    attacker.request_stop();
    attacker.join();
    EXPECT_TRUE(fs::exists(harness / "elsewhere/precious"));
}

TEST(PosixFileItems, AFolderReachedByALinkIsNotPutIntoItself) {
    PosixItemsHarness harness;
    harness.folder("old");
    harness.link("door", "old");
    const auto copied = harness.items().copy(harness / "old", harness / "door/new");
    ASSERT_FALSE(copied);
    EXPECT_EQ(copied.error().code, EINVAL);
    EXPECT_TRUE(fs::is_empty(harness / "old"));
}

TEST(PosixFileItems, AFolderDeeperThanAPathCanTellIsAnErrorAndLeavesNothing) {
    PosixItemsHarness harness;
    harness.folder("old");
    const std::string name(200, 'd');
    const auto start = fs::current_path();
    fs::current_path(harness / "old");
    for (int depth = 0; depth < 30; ++depth) {
        ASSERT_EQ(mkdir(name.c_str(), 0700), 0);
        ASSERT_EQ(chdir(name.c_str()), 0);
    }
    fs::current_path(start);
    const auto copied = harness.items().copy(harness / "old", harness / "new");
    ASSERT_FALSE(copied);
    EXPECT_EQ(copied.error().code, ENAMETOOLONG);
    EXPECT_EQ(holds(harness.top.path()), 1);
}

} // namespace fernwick::platform
