#include "portability/CatalogueFile.h"

#include "SyncWorld.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <random>

namespace fernwick::tests {
namespace {

using Index = CatalogueIndex;

std::string textOf(const CatalogueBlobs::Blob& blob) {
    return blob ? blob->bytes() : "(nothing)";
}

std::string contentOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    EXPECT_TRUE(file.is_open()) << path;
    return {std::istreambuf_iterator<char>(file), {}};
}

TEST(CatalogueFile, HoldsTheListsInTheirOrder) {
    CatalogueBlobs blobs;
    blobs[Index::rules] = platform::Data("R");
    blobs[Index::tunnels] = platform::Data("T");
    blobs[Index::keys] = platform::Data("");
    EXPECT_EQ(encodeCatalogue(blobs), R"({"tunnels":"VA==","keys":"","rules":"Ug=="})");
    EXPECT_EQ(encodeCatalogue({}), "{}");
}

TEST(CatalogueFile, OfANameThatIsThereTwiceTheLastStands) {
    const auto blobs = decodeCatalogue(R"({"tunnels":"VA==","tunnels":"Ug=="})");
    ASSERT_TRUE(blobs.has_value());
    EXPECT_EQ(textOf((*blobs)[Index::tunnels]), "R");
    const auto broken = decodeCatalogue(R"({"tunnels":"VA==","tunnels":"?"})");
    ASSERT_TRUE(broken.has_value());
    EXPECT_EQ(textOf((*broken)[Index::tunnels]), "(nothing)");
}

TEST(CatalogueFile, ReadsWhatOtherWritersEscape) {
    const auto blobs = decodeCatalogue("\n{ \"\\u0074unnels\" :\t\"\\/\\/8=\" }\n");
    ASSERT_TRUE(blobs.has_value());
    EXPECT_EQ(textOf((*blobs)[Index::tunnels]), "\xFF\xFF");
}

TEST(CatalogueFile, ANameOfNobodyIsAMember) {
    const auto blobs = decodeCatalogue(R"({"version":"2"})");
    ASSERT_TRUE(blobs.has_value());
    EXPECT_EQ(*blobs, CatalogueBlobs());
}

std::string randomBytes(std::mt19937& random) {
    std::string bytes(std::uniform_int_distribution<std::size_t>(0, 3000)(random), '\0');
    for (auto& byte : bytes) {
        byte = static_cast<char>(random());
    }
    return bytes;
}

// Out by an export, and back into preferences that never saw them.
TEST(CatalogueFile, AnyBytesTravelUnchanged) {
    std::mt19937 random(20260101); // NOLINT(cert-msc51-cpp): the same each time
    for (int round = 0; round < 200; ++round) {
        SyncWorld from;
        from.defaults.setData(kTunnels, randomBytes(random));
        for (const auto key : {kTags, kKeys, kProxies, kRules}) {
            if (random() % 2 == 0) {
                from.defaults.setData(key, randomBytes(random));
            }
        }
        from.open().exportAll(from.completion());
        from.dialogs.answer("/out");
        SyncWorld to;
        to.files.files = from.files.files;
        to.open().restoreBackup("/out", to.completion());
        to.dispatch.advance(std::chrono::seconds(1));
        EXPECT_EQ(to.told, Tellings({{true, "Restore successful"}}));
        for (const auto key : {kTunnels, kTags, kKeys, kProxies, kRules}) {
            ASSERT_EQ(to.stored(key), from.stored(key)) << round;
        }
    }
}

// A file from the saved ones, and what restoring it says.
struct SavedFile {
    std::string name;
    std::string message;
    std::vector<std::string_view> changed = {};
};

class SavedFiles : public testing::TestWithParam<SavedFile> {};

TEST_P(SavedFiles, EndsInItsMessage) {
    SyncWorld world;
    for (const auto key : {kTunnels, kTags, kKeys, kProxies, kRules}) {
        world.defaults.setData(key, "old");
    }
    world.putFile("/in", contentOf(FERNWICK_RESTORE_FILES "/" + GetParam().name));
    world.open().restoreBackup("/in", world.completion());
    world.dispatch.advance(std::chrono::seconds(1));
    ASSERT_EQ(world.told.size(), 1U);
    EXPECT_EQ(world.told[0].message, GetParam().message);
    std::vector<std::string_view> changed;
    for (const auto key : {kTunnels, kTags, kKeys, kProxies, kRules}) {
        if (world.stored(key) != "old") {
            changed.push_back(key);
        }
    }
    EXPECT_EQ(changed, GetParam().changed);
}

constexpr const char* kNone = "Unrecognised backup format";
constexpr const char* kMap = "Restore successful";
constexpr const char* kList = "Tunnels restored successfully";

INSTANTIATE_TEST_SUITE_P(
    Restore, SavedFiles,
    testing::Values(SavedFile{"all.backup", kMap, {kTunnels, kTags, kKeys, kProxies, kRules}},
                    SavedFile{"list.json", kList, {kTunnels}}, SavedFile{"empty-list.json", kList, {kTunnels}},
                    SavedFile{"escaped.backup", kMap, {kTunnels, kProxies}},
                    SavedFile{"duplicate.backup", kMap, {kTunnels}},
                    SavedFile{"duplicate-broken.backup", kNone}, SavedFile{"empty.backup", kNone},
                    SavedFile{"empty-object.backup", kNone}, SavedFile{"numbers.json", kNone},
                    SavedFile{"number-for-text.backup", kNone}, SavedFile{"null-for-text.backup", kNone},
                    SavedFile{"nested.backup", kNone}, SavedFile{"deep.backup", kNone},
                    SavedFile{"truncated.backup", kNone}, SavedFile{"truncated-list.json", kNone},
                    SavedFile{"trailing.backup", kNone}, SavedFile{"two-objects.backup", kNone},
                    SavedFile{"bad-base64.backup", kNone, {kTags}}, SavedFile{"url-base64.backup", kNone},
                    SavedFile{"unpadded.backup", kNone}, SavedFile{"line-breaks.backup", kNone},
                    SavedFile{"rules-only.backup", kNone, {kRules}},
                    SavedFile{"proxies-only.backup", kMap, {kProxies}}, SavedFile{"unknown-only.backup", kNone},
                    SavedFile{"invalid-utf8.backup", kNone}, SavedFile{"lone-surrogate.backup", kNone},
                    SavedFile{"nul.backup", kNone}, SavedFile{"utf16.backup", kNone},
                    SavedFile{"list-of-objects.json", kNone}, SavedFile{"text.json", kNone},
                    SavedFile{"preferences.plist", kNone}),
    [](const auto& file) {
        auto name = file.param.name;
        std::ranges::replace_if(name, [](char c) { return c == '-' || c == '.'; }, '_');
        return name;
    });

} // namespace
} // namespace fernwick::tests
