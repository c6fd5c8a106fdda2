#include "UserDefaultsContract.h"
#include "platform/posix/PropertyListFile.h"
#include "platform/posix/PropertyListGuard.h"

#include <gtest/gtest.h>

#include <cmath>

namespace fernwick::platform {

namespace {

// A binary property list of one-byte objects and references: the root is object 0.
std::string binaryList(const std::vector<std::string>& objects) {
    std::string bytes = "bplist00";
    std::string offsets;
    for (const auto& object : objects) {
        offsets += static_cast<char>(bytes.size() >> 8U);
        offsets += static_cast<char>(bytes.size() & 0xFFU);
        bytes += object;
    }
    const auto table = bytes.size();
    bytes += offsets;
    bytes += std::string(6, '\0') + '\x02' + '\x01';
    const auto number = [&](std::size_t value) {
        for (int shift = 56; shift >= 0; shift -= 8) {
            bytes += static_cast<char>(value >> static_cast<unsigned>(shift) & 0xFFU);
        }
    };
    number(objects.size());
    number(0);
    number(table);
    return bytes;
}

std::string nested(std::size_t depth) {
    std::string xml = "<plist version=\"1.0\">";
    for (std::size_t level = 0; level < depth; ++level) {
        xml += "<array>";
    }
    for (std::size_t level = 0; level < depth; ++level) {
        xml += "</array>";
    }
    return xml + "</plist>";
}

} // namespace

TEST(PropertyListFile, EveryKindOfValueComesBack) {
    const auto values = everyKindOfValue();
    const auto parsed = parsePropertyList(encodePropertyList(values));
    ASSERT_TRUE(parsed);
    EXPECT_EQ(*parsed, PropertyValue{values});
}

TEST(PropertyListFile, NoPrefixOfAFileIsTakenForTheWhole) {
    const auto bytes = encodePropertyList(everyKindOfValue());
    for (std::size_t size = 0; size < bytes.size(); ++size) {
        EXPECT_EQ(parsePropertyList(std::string_view(bytes).substr(0, size)), std::nullopt) << size;
    }
}

TEST(PropertyListFile, DatesOutOfRangeAreBounded) {
    for (const double seconds : {1e300, -1e300, std::nan("")}) {
        const auto parsed = parsePropertyList(encodePropertyList({{"date", {support::Date{seconds}}}}));
        ASSERT_TRUE(parsed);
        EXPECT_LT(
            std::abs(parsed->as<PropertyDictionary>()->at("date").as<support::Date>()->secondsSinceReference),
            2147483649.0);
    }
}

TEST(PropertyListFile, DatesLoseNothingHoweverOftenTheyAreWritten) {
    for (const double start : {700000000.1, 788918400.123456, 0.9, 5.3, -1.25, -7.7}) {
        double seconds = start;
        for (int round = 0; round < 50; ++round) {
            const auto parsed = parsePropertyList(encodePropertyList({{"date", {support::Date{seconds}}}}));
            ASSERT_TRUE(parsed);
            seconds = parsed->as<PropertyDictionary>()->at("date").as<support::Date>()->secondsSinceReference;
        }
        EXPECT_NEAR(seconds, start, 0.6e-6);
    }
}

TEST(PropertyListFile, ShortDateIsRefused) {
    EXPECT_EQ(parsePropertyList(binaryList({std::string("\x32\0\0\0\0", 5)})), std::nullopt);
}

TEST(PropertyListFile, TextWithANulIsRefused) {
    using namespace std::string_literals;
    EXPECT_EQ(parsePropertyList(binaryList({"\xD1\x01\x01"s, "\x52h\0"s})), std::nullopt);
    EXPECT_EQ(parsePropertyList(binaryList({"\xD1\x01\x01"s, "\x62\x01\0\0\0"s})), std::nullopt);
    EXPECT_TRUE(parsePropertyList(binaryList({"\xD1\x01\x01"s, "\x62\x01\0\x01\0"s})));
}

TEST(PropertyListFile, TextThatIsNotUtf8IsRefusedAndNotWritten) {
    EXPECT_EQ(parsePropertyList(binaryList({"\x52h\xe3"})), std::nullopt);
    const auto parsed = parsePropertyList(encodePropertyList({{"k\xe3", {std::string("a\xff\x80z")}}}));
    EXPECT_EQ(parsed, (PropertyValue{PropertyDictionary{{"k", {std::string("az")}}}}));
}

TEST(PropertyListFile, SharedObjectsAreReadForEachUse) {
    // A list of the same text three times.
    const auto parsed = parsePropertyList(binaryList({"\xA3\x01\x01\x01", "\x52hi"}));
    ASSERT_TRUE(parsed);
    const PropertyValue text{std::string("hi")};
    EXPECT_EQ(*parsed, (PropertyValue{PropertyArray{text, text, text}}));
}

TEST(PropertyListFile, ObjectThatHoldsItselfIsRefused) {
    EXPECT_EQ(parsePropertyList(binaryList({"\xA1\x01", std::string("\xA1\x00", 2)})), std::nullopt);
}

TEST(PropertyListFile, SharingThatMultipliesIsRefused) {
    std::vector<std::string> objects;
    for (char next = 1; next <= 40; ++next) {
        objects.push_back(std::string("\xA4") + next + next + next + next);
    }
    objects.emplace_back("\x52hi");
    EXPECT_FALSE(isSafePropertyList(binaryList(objects)));
}

TEST(PropertyListFile, DeepNestingIsRefused) {
    EXPECT_TRUE(isSafePropertyList(nested(kDeepestPropertyList)));
    EXPECT_FALSE(isSafePropertyList(nested(kDeepestPropertyList + 1)));
    std::vector<std::string> objects;
    for (char next = 1; next <= 100; ++next) {
        objects.push_back(std::string("\xA1") + next);
    }
    objects.emplace_back("\x52hi");
    EXPECT_FALSE(isSafePropertyList(binaryList(objects)));
}

TEST(PropertyListFile, CommentsDoNotHideNesting) {
    std::string xml = "<plist version=\"1.0\">";
    for (std::size_t level = 0; level <= kDeepestPropertyList; ++level) {
        xml += "<array><!--</array>-->";
    }
    EXPECT_FALSE(isSafePropertyList(xml));
}

TEST(PropertyListFile, ManyEmptyContainersAreNoNesting) {
    std::string xml = "<plist version=\"1.0\"><array>";
    for (int count = 0; count < 1000; ++count) {
        xml += "<dict/><array></array>";
    }
    const auto parsed = parsePropertyList(xml + "</array></plist>");
    ASSERT_TRUE(parsed);
    EXPECT_EQ(parsed->as<PropertyArray>()->size(), 2000U);
}

} // namespace fernwick::platform
