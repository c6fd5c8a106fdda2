#include "catalogue/KeyManager.h"

#include "support/FakeUserDefaults.h"

#include <gtest/gtest.h>

namespace fernwick {
namespace {

IdentityKey key(std::string name, std::string path) {
    return {support::Uuid::random(), std::move(name), std::move(path), "", {}};
}

std::string stored(const fakes::FakeUserDefaults& defaults) {
    const auto data = defaults.data("savedSSHKeys");
    return data ? data->bytes() : "(nothing)";
}

TEST(KeyManager, MissingDataIsAnEmptyListAndStaysMissing) {
    fakes::FakeUserDefaults defaults;
    const KeyManager keys(defaults);
    EXPECT_TRUE(keys.keys().empty());
    EXPECT_EQ(stored(defaults), "(nothing)");
}

TEST(KeyManager, BrokenDataStaysUntilTheNextSave) {
    fakes::FakeUserDefaults defaults;
    defaults.setData(KeyManager::kDefaultsKey, "[{}]");
    KeyManager keys(defaults);
    EXPECT_TRUE(keys.keys().empty());
    EXPECT_EQ(stored(defaults), "[{}]");
    keys.add(key("k", "/k"));
    EXPECT_TRUE(stored(defaults).starts_with(R"([{"id":")"));
}

TEST(KeyManager, KeysSurviveInTheirOrderWithAllFields) {
    fakes::FakeUserDefaults defaults;
    auto first = key("first", "/a");
    first.comment = "mine";
    first.addedAt = {42.25};
    const auto second = key("second", "/b");
    {
        KeyManager keys(defaults);
        keys.add(first);
        keys.add(second);
    }
    EXPECT_EQ(KeyManager(defaults).keys(), (std::vector{first, second}));
    EXPECT_EQ(stored(defaults).substr(0, 8 + 36 + 55),
              R"([{"id":")" + first.id.text() + R"(","name":"first","path":"/a","comment":"mine","addedAt")");
}

TEST(KeyManager, SecondKeyWithTheSamePathIsLeftOut) {
    fakes::FakeUserDefaults defaults;
    KeyManager keys(defaults);
    keys.add(key("one", "/same"));
    const auto writes = defaults.changes().size();
    keys.add(key("another name", "/same"));
    EXPECT_EQ(keys.keys().size(), 1U);
    EXPECT_EQ(keys.keys().front().name, "one");
    EXPECT_EQ(defaults.changes().size(), writes);
    keys.add(key("path in capitals", "/SAME"));
    EXPECT_EQ(keys.keys().size(), 2U);
}

TEST(KeyManager, RemoveAndUpdateSave) {
    fakes::FakeUserDefaults defaults;
    KeyManager keys(defaults);
    auto mine = key("one", "/a");
    keys.add(mine);
    mine.name = "renamed";
    keys.update(mine);
    EXPECT_EQ(KeyManager(defaults).keys(), std::vector{mine});
    keys.remove(mine.id);
    EXPECT_EQ(stored(defaults), "[]");
}

TEST(KeyManager, UpdateOfAnUnknownKeyDoesNothing) {
    fakes::FakeUserDefaults defaults;
    KeyManager keys(defaults);
    keys.update(key("unknown", "/u"));
    EXPECT_TRUE(keys.keys().empty());
    EXPECT_EQ(stored(defaults), "(nothing)");
}

struct KeyTypeRow {
    std::string name, path, type;
};

class IdentityKeyType : public testing::TestWithParam<KeyTypeRow> {};

TEST_P(IdentityKeyType, ComesFromTheFileName) {
    EXPECT_EQ(key("", GetParam().path).keyType(), GetParam().type);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, IdentityKeyType,
    testing::Values(KeyTypeRow{"Rsa", "/home/u/.ssh/id_rsa", "RSA"},
                    KeyTypeRow{"Ed25519", "/k/id_ed25519", "Ed25519"},
                    KeyTypeRow{"Ecdsa", "/k/id_ecdsa", "ECDSA"}, KeyTypeRow{"Pem", "/k/server.pem", "PEM"},
                    KeyTypeRow{"Unknown", "/k/key", "Unknown"}, KeyTypeRow{"InOrder", "my_rsa_ed25519", "RSA"},
                    KeyTypeRow{"CaseSensitive", "/k/ID_RSA", "Unknown"},
                    KeyTypeRow{"PemInCapitals", "/k/server.PEM", "Unknown"},
                    KeyTypeRow{"FolderDoesNotCount", "/rsa/key", "Unknown"},
                    KeyTypeRow{"TrailingSlash", "/keys/id_rsa/", "RSA"}, KeyTypeRow{"Empty", "", "Unknown"}),
    [](const auto& row) { return row.param.name; });

} // namespace
} // namespace fernwick
