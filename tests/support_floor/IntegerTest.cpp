#include "support/Integer.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace fernwick::support {
namespace {

TEST(ParseInteger, ReadsDigitsWithAnOptionalSign) {
    EXPECT_EQ(parseInteger<int>("0"), 0);
    EXPECT_EQ(parseInteger<int>("0080"), 80);
    EXPECT_EQ(parseInteger<int>("+7"), 7);
    EXPECT_EQ(parseInteger<int>("-7"), -7);
    EXPECT_EQ(parseInteger<std::uint8_t>("255"), 255);
    EXPECT_EQ(parseInteger<std::uint32_t>("4294967295"), 4294967295U);
}

TEST(ParseInteger, AnythingElseIsNoNumber) {
    for (const auto* const text :
         {"", "+", "-", "+-7", "++7", "--7", " 7", "7 ", "7x", "x7", "0x7", "1.0", "1e2", "٣"}) {
        EXPECT_FALSE(parseInteger<int>(text)) << text;
    }
}

TEST(ParseInteger, NumbersThatTheTypeDoesNotHoldAreNone) {
    EXPECT_FALSE(parseInteger<std::uint8_t>("256"));
    EXPECT_FALSE(parseInteger<std::uint8_t>("-1"));
    EXPECT_FALSE(parseInteger<int>("2147483648"));
    EXPECT_FALSE(parseInteger<std::uint32_t>("4294967296"));
}

} // namespace
} // namespace fernwick::support
