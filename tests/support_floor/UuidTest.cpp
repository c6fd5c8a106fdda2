#include "support/Uuid.h"

#include <gtest/gtest.h>

#include <set>
#include <unordered_set>

namespace fernwick::support {
namespace {

constexpr std::string_view kText = "0F8FAD5B-D9CB-469F-A165-70867728950E";

TEST(Uuid, ReadsItsBytesInOrder) {
    const auto uuid = Uuid::parse(kText);
    ASSERT_TRUE(uuid);
    const std::array<std::uint8_t, 16> expected{0x0F, 0x8F, 0xAD, 0x5B, 0xD9, 0xCB, 0x46, 0x9F,
                                                0xA1, 0x65, 0x70, 0x86, 0x77, 0x28, 0x95, 0x0E};
    EXPECT_EQ(uuid->bytes, expected);
}

TEST(Uuid, WritesUpperCaseWhateverItRead) {
    EXPECT_EQ(Uuid::parse(kText)->text(), kText);
    EXPECT_EQ(Uuid::parse("0f8fad5b-d9cb-469f-a165-70867728950e")->text(), kText);
    EXPECT_EQ(Uuid::parse("0f8fAD5b-d9cB-469F-a165-70867728950e")->text(), kText);
    EXPECT_EQ(Uuid{}.text(), "00000000-0000-0000-0000-000000000000");
}

struct BadText {
    const char* name;
    std::string text;
};

class UuidBadText : public ::testing::TestWithParam<BadText> {};

TEST_P(UuidBadText, IsNoUuid) {
    EXPECT_EQ(Uuid::parse(GetParam().text), std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(Uuid, UuidBadText,
                         ::testing::Values(BadText{"Empty", ""},
                                           BadText{"NoHyphens", "0F8FAD5BD9CB469FA16570867728950E"},
                                           BadText{"TooShort", "0F8FAD5B-D9CB-469F-A165-70867728950"},
                                           BadText{"TooLong", "0F8FAD5B-D9CB-469F-A165-70867728950E0"},
                                           BadText{"Braced", "{0F8FAD5B-D9CB-469F-A165-70867728950E}"},
                                           BadText{"BlankInFront", " 0F8FAD5B-D9CB-469F-A165-70867728950"},
                                           BadText{"NoDigit", "0F8FAD5B-D9CB-469F-A165-70867728950G"},
                                           BadText{"HyphenForDigit", "0F8FAD5B-D9CB-469F-A165--0867728950E"},
                                           BadText{"DigitForHyphen", "0F8FAD5B0D9CB-469F-A165-70867728950E"},
                                           BadText{"MisplacedHyphens", "0F8FAD5BD-9CB-469F-A165-70867728950E"},
                                           BadText{"NotAscii", "0F8FAD5B-D9CB-469F-A165-7086772895é"}),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(Uuid, RandomOnesDifferAndAreOfVersionFour) {
    std::set<Uuid> seen;
    for (int count = 0; count < 1000; ++count) {
        const Uuid uuid = Uuid::random();
        const std::string text = uuid.text();
        EXPECT_EQ(text[14], '4');
        EXPECT_NE(std::string_view("89AB").find(text[19]), std::string_view::npos);
        EXPECT_EQ(Uuid::parse(text), uuid);
        EXPECT_TRUE(seen.insert(uuid).second);
    }
}

TEST(Uuid, HashTellsNeighboursApart) {
    std::unordered_set<std::size_t> hashes;
    for (std::size_t index = 0; index < 16; ++index) {
        for (unsigned bit = 0; bit < 8; ++bit) {
            Uuid uuid;
            uuid.bytes[index] = static_cast<std::uint8_t>(1U << bit);
            hashes.insert(std::hash<Uuid>{}(uuid));
        }
    }
    EXPECT_EQ(hashes.size(), 128U);
    EXPECT_EQ(std::hash<Uuid>{}(*Uuid::parse(kText)), std::hash<Uuid>{}(*Uuid::parse(kText)));
}

TEST(Uuid, WriteFillsExactlyItsLength) {
    std::array<char, Uuid::kTextLength + 1> out{};
    out.back() = '!';
    Uuid::parse(kText)->write(out.data());
    EXPECT_EQ(std::string_view(out.data(), out.size()), std::string(kText) + "!");
}

} // namespace
} // namespace fernwick::support
