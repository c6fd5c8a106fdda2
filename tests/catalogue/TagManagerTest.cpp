#include "catalogue/TagManager.h"

#include "support/FakeUserDefaults.h"

#include <gtest/gtest.h>

namespace fernwick {
namespace {

using Pairs = std::vector<std::pair<std::string, std::string>>;

const Pairs kDefaults{{"Production", "#FF453A"},
                      {"Staging", "#FF9F0A"},
                      {"Development", "#30D158"},
                      {"Database", "#0A84FF"},
                      {"Personal", "#BF5AF2"}};

Pairs pairsOf(const TagManager& tags) {
    Pairs pairs;
    for (const auto& tag : tags.tags()) {
        pairs.emplace_back(tag.name, tag.colorHex);
    }
    return pairs;
}

std::string stored(const fakes::FakeUserDefaults& defaults) {
    const auto data = defaults.data("savedTunnelTags");
    return data ? data->bytes() : "(nothing)";
}

TEST(TagManager, MissingDataGivesTheFiveDefaultsAndStoresThem) {
    fakes::FakeUserDefaults defaults;
    const TagManager tags(defaults);
    EXPECT_EQ(pairsOf(tags), kDefaults);
    EXPECT_EQ(pairsOf(TagManager(defaults)), kDefaults);
    EXPECT_EQ(TagManager(defaults).tags(), tags.tags());
}

TEST(TagManager, CorruptDataIsReplacedByDefaultsWithNewIds) {
    fakes::FakeUserDefaults defaults;
    const auto before = TagManager(defaults).tags();
    defaults.setData(TagManager::kDefaultsKey, "corrupt");
    const TagManager tags(defaults);
    EXPECT_EQ(pairsOf(tags), kDefaults);
    for (const auto& tag : before) {
        EXPECT_EQ(tags.find(tag.id), nullptr);
    }
    EXPECT_NE(stored(defaults), "corrupt");
}

TEST(TagManager, EmptyListStaysEmpty) {
    fakes::FakeUserDefaults defaults;
    defaults.setData(TagManager::kDefaultsKey, "[]");
    EXPECT_TRUE(TagManager(defaults).tags().empty());
    EXPECT_EQ(stored(defaults), "[]");
}

TEST(TagManager, EditingInPlaceAndSavingStoresAndTells) {
    fakes::FakeUserDefaults defaults;
    TagManager tags(defaults);
    int changes = 0;
    const auto subscription = tags.changed.connect([&] { ++changes; });
    tags.tags().erase(tags.tags().begin() + 1, tags.tags().end());
    tags.tags().front().name = "Renamed";
    tags.save();
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(stored(defaults),
              R"([{"id":")" + tags.tags().front().id.text() + R"(","name":"Renamed","colorHex":"#FF453A"}])");
    EXPECT_EQ(tags.find(tags.tags().front().id), &tags.tags().front());
}

} // namespace
} // namespace fernwick
