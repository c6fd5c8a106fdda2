#include "routing/IPv4Text.h"

#include <gtest/gtest.h>

namespace fernwick {
namespace {

TEST(IPv4Text, AddressesHaveFourNumbers) {
    for (const auto* const text :
         {"1.2.3.4", "0.0.0.0", "255.255.255.255", "001.02.3.4", "1..2.3.4.", "+1.2.3.4"}) {
        EXPECT_TRUE(isValidIPv4(text)) << text;
    }
    for (const auto* const text :
         {"", "1.2.3", "1.2.3.4.5", "1.2.3.256", "1.2.3.-4", "1.2.3. 4", "a.b.c.d", "::1", "192.168.1.0/33"}) {
        EXPECT_FALSE(isValidIPv4(text)) << text;
    }
}

TEST(IPv4Text, PiecesThatAreNoNumbersArePassedOver) {
    EXPECT_TRUE(isValidIPv4("1.2.3.x.4"));
    EXPECT_TRUE(isValidIPv4("1.2.3.256.4"));
    EXPECT_EQ(ipToUInt32("1.2.3.x.4"), 0x01020304U);
}

TEST(IPv4Text, NetworksHaveAPrefixFrom0To32) {
    for (const auto* const text : {"10.0.0.0/8", "0.0.0.0/0", "1.2.3.4/32", "1.2.3.4/008", "/1.2.3.4//24/"}) {
        EXPECT_TRUE(isValidCIDR(text)) << text;
    }
    for (const auto* const text : {"", "/", "10.0.0.0", "10.0.0.0/", "192.168.1.0/33", "10.0.0.0/-1",
                                   "10.0.0.0/8/9", "10.0.0/8", "10.0.0.0/x", "10.0.0.0/ 8", "example/8"}) {
        EXPECT_FALSE(isValidCIDR(text)) << text;
    }
}

TEST(IPv4Text, NumberHasTheFirstPieceInItsHighestByte) {
    EXPECT_EQ(ipToUInt32("1.2.3.4"), 0x01020304U);
    EXPECT_EQ(ipToUInt32("255.255.255.255"), 0xFFFFFFFFU);
    EXPECT_EQ(ipToUInt32("0.0.0.0"), 0U);
}

TEST(IPv4Text, NumbersAbove255RunIntoTheByteAboveOrAreLost) {
    EXPECT_EQ(ipToUInt32("0.0.0.256"), 0x00000100U);
    EXPECT_EQ(ipToUInt32("0.1.256.0"), 0x00010000U);
    EXPECT_EQ(ipToUInt32("256.0.0.1"), 1U);
    EXPECT_EQ(ipToUInt32("0.0.0.4294967295"), 0xFFFFFFFFU);
}

TEST(IPv4Text, OtherCountsOfNumbersGiveNone) {
    for (const auto* const text : {"", "1.2.3", "1.2.3.4.5", "1.2.3.4294967296", "1.2.3.-4", "1-2"}) {
        EXPECT_FALSE(ipToUInt32(text)) << text;
    }
}

} // namespace
} // namespace fernwick
