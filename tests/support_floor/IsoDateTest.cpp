#include "support/IsoDate.h"

#include <gtest/gtest.h>

namespace fernwick::support {
namespace {

TEST(IsoDate, IsInUtcToTheSecond) {
    EXPECT_EQ(iso8601Text({0}), "2001-01-01T00:00:00Z");
    EXPECT_EQ(iso8601Text({788918400}), "2026-01-01T00:00:00Z");
    EXPECT_EQ(iso8601Text({805087417}), "2026-07-07T03:23:37Z");
    EXPECT_EQ(iso8601Text({-Date::kUnixEpochOffset}), "1970-01-01T00:00:00Z");
    EXPECT_EQ(iso8601Text({94607999}), "2003-12-31T23:59:59Z");
    EXPECT_EQ(iso8601Text({99705600}), "2004-02-29T00:00:00Z");
    EXPECT_EQ(iso8601Text({99792000}), "2004-03-01T00:00:00Z");
}

TEST(IsoDate, PartsOfASecondAreCutOff) {
    EXPECT_EQ(iso8601Text({0.999}), "2001-01-01T00:00:00Z");
    EXPECT_EQ(iso8601Text({-0.001}), "2000-12-31T23:59:59Z");
    EXPECT_EQ(iso8601Text({-Date::kUnixEpochOffset - 0.5}), "1969-12-31T23:59:59Z");
}

} // namespace
} // namespace fernwick::support
