#include "support/LocalTime.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>

namespace fernwick::support {
namespace {

void moveTo(const char* zone) {
    setenv("TZ", zone, 1); // NOLINT(concurrency-mt-unsafe): no other thread runs
    tzset();
}

std::string textIn(const char* zone, Date date) {
    moveTo(zone);
    return localTimeText(date);
}

TEST(LocalTime, IsThatOfTheMachinesZone) {
    EXPECT_EQ(textIn("UTC", {0}), "00:00:00");
    EXPECT_EQ(textIn("ICT-7", {0}), "07:00:00");
    EXPECT_EQ(textIn("EST5", {3723}), "20:02:03");
}

TEST(LocalTime, PartsOfASecondAreCutOff) {
    EXPECT_EQ(textIn("UTC", {59.999}), "00:00:59");
    EXPECT_EQ(textIn("UTC", {-0.5}), "23:59:59");
}

TEST(LocalTime, SummerTimeCounts) {
    constexpr const char* kZone = "CET-1CEST,M3.5.0,M10.5.0/3";
    constexpr Date kWinterNoon{790171200.0}; // 2026-01-15T12:00:00Z
    constexpr Date kSummerNoon{805809600.0}; // 2026-07-15T12:00:00Z
    EXPECT_EQ(textIn(kZone, kWinterNoon), "13:00:00");
    EXPECT_EQ(textIn(kZone, kSummerNoon), "14:00:00");
}

TEST(LocalTime, AStampHasTheDateToo) {
    constexpr Date kEvening{816468075.5}; // 2026-11-15T20:41:15.5Z
    moveTo("UTC");
    EXPECT_EQ(localFileStamp(kEvening), "2026-11-15_20-41-15");
    EXPECT_EQ(localFileStamp({0}), "2001-01-01_00-00-00");
    moveTo("ICT-7");
    EXPECT_EQ(localFileStamp(kEvening), "2026-11-16_03-41-15");
}

} // namespace
} // namespace fernwick::support
