// What every FileItems keeps to, asked of the fake and of the real one. A harness makes items in a folder of
// its own, `top`, and describes what stands there.
#pragma once

#include "platform/FileItems.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <map>
#include <string>
#include <vector>

namespace fernwick::platform {

// Paths below the top, and what stands there: "folder", "link to <target>", "special", or a file's permission
// bits in octal, time of change in seconds since 2001, and bytes.
using ItemsBelow = std::map<std::string, std::string>;

template <class Harness>
class FileItemsContract : public testing::Test {
protected:
    // A folder with a file, a hidden one, a folder, a link and a link that leads nowhere.
    void makeFolder(const std::string& name) {
        harness_.folder(name);
        harness_.file(name + "/file", "one", 0640, 10);
        harness_.file(name + "/.hidden", "", 0600, 20);
        harness_.folder(name + "/below");
        harness_.file(name + "/below/Kết nối", "text", 0755, 30);
        harness_.link(name + "/link", "file");
        harness_.link(name + "/below/dangling", "../nowhere");
    }

    static ItemsBelow folderNamed(const std::string& name) {
        return {{name, "folder"},
                {name + "/file", "640 10 one"},
                {name + "/.hidden", "600 20 "},
                {name + "/below", "folder"},
                {name + "/below/Kết nối", "755 30 text"},
                {name + "/link", "link to file"},
                {name + "/below/dangling", "link to ../nowhere"}};
    }

    // Expects the failure, and that it changed nothing.
    template <class Act>
    void expectError(int code, const std::string& description, Act act) {
        const auto before = harness_.all();
        const auto result = act();
        ASSERT_FALSE(result);
        EXPECT_EQ(result.error().code, code);
        EXPECT_EQ(result.error().description, description);
        EXPECT_EQ(harness_.all(), before);
    }

    Harness harness_;
};

inline ItemsBelow together(ItemsBelow one, ItemsBelow other) {
    one.merge(other);
    return one;
}

TYPED_TEST_SUITE_P(FileItemsContract);

TYPED_TEST_P(FileItemsContract, NamesAllThatStandsAtTheTop) {
    this->makeFolder("old");
    auto names = this->harness_.items().names(this->harness_ / "old");
    ASSERT_TRUE(names);
    std::ranges::sort(*names);
    EXPECT_EQ(*names, (std::vector<std::string>{".hidden", "below", "file", "link"}));
    this->harness_.folder("empty");
    EXPECT_EQ(this->harness_.items().names(this->harness_ / "empty"), std::vector<std::string>());
}

TYPED_TEST_P(FileItemsContract, NamesNothingOfWhatIsNoFolder) {
    auto& items = this->harness_.items();
    this->harness_.file("file", "text", 0600, 1);
    this->expectError(ENOENT, "No such file or directory",
                      [&] { return items.names(this->harness_ / "nowhere"); });
    this->expectError(ENOTDIR, "Not a directory", [&] { return items.names(this->harness_ / "file"); });
}

TYPED_TEST_P(FileItemsContract, CopiesAFolderWithAllThatItHolds) {
    this->makeFolder("old");
    ASSERT_TRUE(this->harness_.items().copy(this->harness_ / "old", this->harness_ / "new"));
    EXPECT_EQ(this->harness_.all(), together(this->folderNamed("old"), this->folderNamed("new")));
}

TYPED_TEST_P(FileItemsContract, CopiesAFileAndALink) {
    auto& items = this->harness_.items();
    this->harness_.file("file", "text", 0500, 7);
    this->harness_.link("link", "file");
    ASSERT_TRUE(items.copy(this->harness_ / "file", this->harness_ / "file 2"));
    ASSERT_TRUE(items.copy(this->harness_ / "link", this->harness_ / "link 2"));
    EXPECT_EQ(this->harness_.all(), (ItemsBelow{{"file", "500 7 text"},
                                                {"file 2", "500 7 text"},
                                                {"link", "link to file"},
                                                {"link 2", "link to file"}}));
}

TYPED_TEST_P(FileItemsContract, CopiesNothingOverWhatIsThere) {
    auto& items = this->harness_.items();
    this->makeFolder("old");
    this->harness_.file("file", "text", 0600, 1);
    this->harness_.link("dangling", "nowhere");
    for (const auto* taken : {"file", "dangling", "old/below"}) {
        this->expectError(EEXIST, "File exists",
                          [&] { return items.copy(this->harness_ / "old/file", this->harness_ / taken); });
        this->expectError(EEXIST, "File exists",
                          [&] { return items.move(this->harness_ / "old/file", this->harness_ / taken); });
    }
}

TYPED_TEST_P(FileItemsContract, NothingIsNeitherCopiedNorMovedNorRemoved) {
    auto& items = this->harness_.items();
    const auto nowhere = this->harness_ / "nowhere";
    const std::string text = "No such file or directory";
    this->expectError(ENOENT, text, [&] { return items.copy(nowhere, this->harness_ / "new"); });
    this->expectError(ENOENT, text, [&] { return items.move(nowhere, this->harness_ / "new"); });
    this->expectError(ENOENT, text, [&] { return items.remove(nowhere); });
}

TYPED_TEST_P(FileItemsContract, AFolderIsNotPutIntoItself) {
    auto& items = this->harness_.items();
    this->makeFolder("old");
    this->expectError(EINVAL, "Invalid argument",
                      [&] { return items.copy(this->harness_ / "old", this->harness_ / "old/below/new"); });
    this->expectError(EINVAL, "Invalid argument",
                      [&] { return items.move(this->harness_ / "old", this->harness_ / "old/below/new"); });
}

TYPED_TEST_P(FileItemsContract, ASpecialFileAnywhereInItKeepsAFolderFromBeingCopied) {
    auto& items = this->harness_.items();
    this->makeFolder("old");
    this->harness_.makeSpecial("old/below/pipe");
    const auto old = this->harness_ / "old";
    this->expectError(EOPNOTSUPP, "Operation not supported",
                      [&] { return items.copy(old, this->harness_ / "new"); });
    this->expectError(EOPNOTSUPP, "Operation not supported",
                      [&] { return items.copy(old + "/below/pipe", this->harness_ / "new"); });
}

TYPED_TEST_P(FileItemsContract, MovesAFolderWithAllThatItHolds) {
    this->makeFolder("old");
    ASSERT_TRUE(this->harness_.items().move(this->harness_ / "old", this->harness_ / "new"));
    EXPECT_EQ(this->harness_.all(), this->folderNamed("new"));
}

TYPED_TEST_P(FileItemsContract, RemovesAFolderAndALinkAlone) {
    auto& items = this->harness_.items();
    this->makeFolder("old");
    this->makeFolder("kept");
    this->harness_.link("link", "kept");
    ASSERT_TRUE(items.remove(this->harness_ / "old"));
    ASSERT_TRUE(items.remove(this->harness_ / "link"));
    EXPECT_EQ(this->harness_.all(), this->folderNamed("kept"));
}

TYPED_TEST_P(FileItemsContract, WhatIsThereIsWritableAndNothingIsNot) {
    auto& items = this->harness_.items();
    this->makeFolder("old");
    EXPECT_TRUE(items.isWritable(this->harness_ / "old"));
    EXPECT_TRUE(items.isWritable(this->harness_ / "old/file"));
    EXPECT_FALSE(items.isWritable(this->harness_ / "nowhere"));
}

REGISTER_TYPED_TEST_SUITE_P(FileItemsContract, NamesAllThatStandsAtTheTop, NamesNothingOfWhatIsNoFolder,
                            CopiesAFolderWithAllThatItHolds, CopiesAFileAndALink, CopiesNothingOverWhatIsThere,
                            NothingIsNeitherCopiedNorMovedNorRemoved, AFolderIsNotPutIntoItself,
                            ASpecialFileAnywhereInItKeepsAFolderFromBeingCopied, MovesAFolderWithAllThatItHolds,
                            RemovesAFolderAndALinkAlone, WhatIsThereIsWritableAndNothingIsNot);

} // namespace fernwick::platform
