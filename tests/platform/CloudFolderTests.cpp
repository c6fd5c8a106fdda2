#include "platform/linux/CloudFolder.h"
#include "platform/linux/CloudMemory.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <string>
#include <sys/stat.h>
#include <vector>

namespace fernwick::platform {

namespace {

namespace fs = std::filesystem;

struct NameRow {
    const char* name;
    std::string file;
    bool isKey;
};

class CloudKey : public testing::TestWithParam<NameRow> {};

using Keys = std::vector<std::string>;

CloudFiles filesOf(std::map<std::string, std::string> values) {
    CloudFiles files;
    for (auto& [key, bytes] : values) {
        files.values.emplace(key, Data(bytes));
    }
    return files;
}

} // namespace

TEST_P(CloudKey, IsToldFromOtherNames) {
    EXPECT_EQ(isCloudKey(GetParam().file), GetParam().isKey) << GetParam().file;
}

INSTANTIATE_TEST_SUITE_P(
    Names, CloudKey,
    testing::Values(
        NameRow{"Tunnels", "fernWick_tunnels_v2", true}, NameRow{"Tags", "fernWick_tags_v1", true},
        NameRow{"Keys", "fernWick_keys_v1", true}, NameRow{"Proxies", "fernWick_proxies_v1", true},
        NameRow{"Rules", "fernWick_rules_v1", true}, NameRow{"EveryCharacter", "aZ09_-.", true},
        NameRow{"OneCharacter", "k", true}, NameRow{"Longest", std::string(200, 'k'), true},
        NameRow{"TooLong", std::string(201, 'k'), false}, NameRow{"Empty", "", false},
        NameRow{"DotInFront", ".key", false}, NameRow{"ThisFolder", ".", false},
        NameRow{"FolderAbove", "..", false}, NameRow{"Path", "a/b", false}, NameRow{"Blank", "a b", false},
        NameRow{"Nul", std::string("a\0b", 3), false}, NameRow{"LineFeed", "a\n", false},
        NameRow{"Accent",
                "kh\xc3\xb3"
                "a",
                false},
        NameRow{"NoUtf8", "a\xff", false}, NameRow{"Syncthing", ".syncthing.fernWick_tags_v1.tmp", false},
        NameRow{"OldSyncthing", "~syncthing~fernWick_tags_v1.tmp", false},
        NameRow{"Temporary", "fernWick_tags_v1.tmp", false}, NameRow{"Ours", "fernWick_tags_v1.tmp-123", false},
        NameRow{"Part", "fernWick_tags_v1.part", false}, NameRow{"Partial", "fernWick_tags_v1.partial", false},
        NameRow{"Download", "fernWick_tags_v1.crdownload", false},
        NameRow{"Nextcloud", ".fernWick_tags_v1.~4f1a", false}, NameRow{"Office", "~$fernWick_tags_v1", false},
        NameRow{"LibreOffice", ".~lock.fernWick_tags_v1#", false},
        NameRow{"Lock", "fernWick_tags_v1.lock", false}, NameRow{"Editor", "fernWick_tags_v1~", false},
        NameRow{"Dropbox", "fernWick_tags_v1 (conflicted copy)", false},
        NameRow{"SyncthingConflict", "fernWick_tags_v1.sync-conflict-20260101-120000-ABCDEFG", false}),
    [](const auto& row) { return row.param.name; });

TEST(CloudFolder, ReadsFilesWhoseNamesAreKeys) {
    const fakes::TemporaryFolder folder;
    folder.write("key", std::string("\0\xff", 2));
    folder.write("other.key", "value");
    folder.write("other.key.tmp", "half");
    const auto files = CloudFolder(folder.path()).read({});
    ASSERT_TRUE(files);
    EXPECT_EQ(files->values, filesOf({{"key", {"\0\xff", 2}}, {"other.key", "value"}}).values);
    EXPECT_TRUE(files->unknown.empty());
}

TEST(CloudFolder, WhatTellsNothingIsUnknown) {
    const fakes::TemporaryFolder folder;
    folder.write("empty", "");
    fs::create_directory(folder / "folder");
    ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
    fs::create_symlink("circle", folder / "circle");
    folder.write("huge", "x");
    fs::resize_file(folder / "huge", CloudFolder::kLargestValue + 1);
    folder.write("skipped", "half");
    const auto files = CloudFolder(folder.path()).read({"skipped"});
    ASSERT_TRUE(files);
    EXPECT_TRUE(files->values.empty());
    EXPECT_EQ(files->unknown,
              (std::set<std::string, std::less<>>{"circle", "empty", "folder", "huge", "pipe", "skipped"}));
}

TEST(CloudFolder, PicturesThatSomebodyKeepsThereDoNotFillTheMemory) {
    const fakes::TemporaryFolder folder;
    for (const auto* name : {"1.jpg", "2.jpg", "3.jpg", "4.jpg", "5.jpg"}) {
        folder.write(name, "x");
        fs::resize_file(folder / name, CloudFolder::kLargestValue);
    }
    const auto files = CloudFolder(folder.path()).read({});
    ASSERT_TRUE(files);
    EXPECT_EQ(files->values.size(), 4U);
    EXPECT_TRUE(files->unknown.contains("5.jpg"));
}

TEST(CloudFolder, WritesWholeFilesForTheirOwnerAlone) {
    const fakes::TemporaryFolder folder;
    folder.write("key", "a longer old value");
    folder.write("key.tmp-1999999999", "half"); // of a killed process: beyond the largest process id
    CloudFolder cloud(folder.path());
    EXPECT_EQ(cloud.write("key", Data("value")), 0);
    EXPECT_EQ(folder.read("key"), "value");
    EXPECT_EQ(fs::status(folder / "key").permissions(), fs::perms::owner_read | fs::perms::owner_write);
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.path()), {}), 1);
    EXPECT_EQ(cloud.write("key", Data(std::string(CloudFolder::kLargestValue + 1, 'x'))), EFBIG);
    EXPECT_EQ(folder.read("key"), "value");
}

TEST(CloudFolder, FolderThatIsNoneIsTold) {
    const fakes::TemporaryFolder folder;
    folder.write("file", "text");
    EXPECT_TRUE(CloudFolder(folder.path()).canBeListed());
    for (const auto* name : {"missing", "file", "file/below"}) {
        CloudFolder cloud(folder / name);
        EXPECT_FALSE(cloud.canBeListed()) << name;
        EXPECT_FALSE(cloud.read({})) << name;
        EXPECT_NE(cloud.write("key", Data("value")), 0) << name;
    }
    EXPECT_FALSE(fs::exists(folder / "missing"));
}

TEST(CloudMemory, FirstLookIsNobodysChange) {
    CloudMemory memory;
    EXPECT_TRUE(memory.take(filesOf({{"a", "1"}})).empty());
    EXPECT_EQ(memory.data("a"), Data("1"));
    EXPECT_EQ(memory.take(filesOf({{"b", "2"}, {"a", "1"}})), Keys{"b"});
}

TEST(CloudMemory, WhatComesWithANewPlaceIsAChange) {
    CloudMemory memory;
    memory.beginWithNothing();
    EXPECT_EQ(memory.take(filesOf({{"a", "1"}})), Keys{"a"});
}

TEST(CloudMemory, ChangesAreToldOnceAndSorted) {
    CloudMemory memory;
    EXPECT_TRUE(memory.take({}).empty());
    EXPECT_EQ(memory.take(filesOf({{"b", "1"}, {"c", "1"}, {"a", "1"}})), (Keys{"a", "b", "c"}));
    EXPECT_TRUE(memory.take(filesOf({{"b", "1"}, {"c", "1"}, {"a", "1"}})).empty());
    EXPECT_EQ(memory.take(filesOf({{"b", "2"}, {"c", "1"}})), (Keys{"a", "b"}));
    EXPECT_EQ(memory.data("a"), std::nullopt);
    EXPECT_EQ(memory.data("b"), Data("2"));
}

TEST(CloudMemory, OwnWriteIsNoChange) {
    CloudMemory memory;
    EXPECT_TRUE(memory.take({}).empty());
    memory.set("a", Data("mine"));
    ASSERT_EQ(memory.pending().size(), 1U);
    memory.written("a", Data("mine"));
    EXPECT_TRUE(memory.pending().empty());
    EXPECT_TRUE(memory.take(filesOf({{"a", "mine"}})).empty());
    EXPECT_EQ(memory.take(filesOf({{"a", "theirs"}})), Keys{"a"});
}

TEST(CloudMemory, WhatIsToBeWrittenHidesWhatOthersWrite) {
    CloudMemory memory;
    EXPECT_TRUE(memory.take(filesOf({{"a", "old"}})).empty());
    memory.set("a", Data("mine"));
    EXPECT_TRUE(memory.take(filesOf({{"a", "theirs"}})).empty());
    EXPECT_EQ(memory.data("a"), Data("mine"));
    memory.written("a", Data("mine"));
    EXPECT_TRUE(memory.take(filesOf({{"a", "mine"}})).empty());
}

TEST(CloudMemory, WhatIsSetDuringAWriteStaysToBeWritten) {
    CloudMemory memory;
    memory.set("a", Data("one"));
    memory.set("a", Data("two"));
    memory.written("a", Data("one"));
    EXPECT_EQ(memory.pending(), (std::vector<std::pair<std::string, Data>>{{"a", Data("two")}}));
}

TEST(CloudMemory, UnknownFileChangesNothing) {
    CloudMemory memory;
    EXPECT_TRUE(memory.take(filesOf({{"a", "1"}})).empty());
    CloudFiles files;
    files.unknown.insert("a");
    EXPECT_TRUE(memory.take(files).empty());
    EXPECT_EQ(memory.data("a"), Data("1"));
}

} // namespace fernwick::platform
