#include "support/RelativeDate.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

namespace fernwick::support {
namespace {

constexpr double kMinute = 60;
constexpr double kHour = 60 * kMinute;
constexpr double kDay = 24 * kHour;
// 2023-07-05T12:00:00Z, in the middle of a month and of a year.
constexpr Date kNow{710251200.0};

std::string english(double secondsFromNow) {
    RelativeDateFormatter formatter("en_US", "UTC");
    return formatter.text({kNow.secondsSinceReference + secondsFromNow}, kNow);
}

struct Case {
    const char* name;
    double secondsFromNow;
    const char* text;
};

class RelativeDate : public testing::TestWithParam<Case> {};

TEST_P(RelativeDate, IsToldInTheLargestUnit) {
    EXPECT_EQ(english(GetParam().secondsFromNow), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(
    English, RelativeDate,
    testing::Values(Case{"now", 0, "0 sec. ago"}, Case{"lessThanASecondAgo", -0.4, "0 sec. ago"},
                    Case{"inLessThanASecond", 0.4, "in 0 sec."}, Case{"oneSecond", -1, "1 sec. ago"},
                    Case{"seconds", -59, "59 sec. ago"}, Case{"oneMinute", -kMinute, "1 min. ago"},
                    Case{"minutes", -59 * kMinute - 59, "59 min. ago"}, Case{"oneHour", -kHour, "1 hr. ago"},
                    Case{"hours", -23 * kHour - 59 * kMinute, "23 hr. ago"}, Case{"oneDay", -kDay, "1 day ago"},
                    Case{"days", -6 * kDay - 23 * kHour, "6 days ago"}, Case{"oneWeek", -7 * kDay, "1 wk. ago"},
                    Case{"weeks", -27 * kDay, "3 wk. ago"}, Case{"oneMonth", -30 * kDay, "1 mo. ago"},
                    Case{"months", -364 * kDay, "11 mo. ago"}, Case{"oneYear", -365 * kDay, "1 yr. ago"},
                    Case{"years", -10 * 366 * kDay, "10 yr. ago"}, Case{"inSeconds", 5, "in 5 sec."},
                    Case{"inMinutes", 5 * kMinute, "in 5 min."}, Case{"inHours", 2 * kHour, "in 2 hr."},
                    Case{"inOneDay", kDay, "in 1 day"}, Case{"inDays", 3 * kDay, "in 3 days"},
                    Case{"inWeeks", 14 * kDay, "in 2 wk."}, Case{"inMonths", 62 * kDay, "in 2 mo."},
                    Case{"inYears", 366 * kDay, "in 1 yr."}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(RelativeDates, SpeakTheLanguageOfTheLocale) {
    RelativeDateFormatter german("de_DE", "UTC");
    EXPECT_EQ(german.text({kNow.secondsSinceReference - 5 * kMinute}, kNow), "vor 5 Min.");
    EXPECT_EQ(german.text({kNow.secondsSinceReference - 3 * kDay}, kNow), "vor 3 Tagen");
}

TEST(RelativeDates, CountDaysByTheCalendarOfTheZone) {
    // From noon to noon over the end of summer time lie 25 hours in Berlin, and one day.
    constexpr Date saturday{720180000.0}; // 2023-10-28T10:00:00Z, noon in Berlin
    constexpr Date sunday{saturday.secondsSinceReference + kDay};
    RelativeDateFormatter berlin("en_US", "Europe/Berlin");
    RelativeDateFormatter utc("en_US", "UTC");
    EXPECT_EQ(utc.text(saturday, sunday), "1 day ago");
    EXPECT_EQ(berlin.text(saturday, sunday), "24 hr. ago");
}

TEST(RelativeDates, DatesBeyondAnyCalendarDoNoHarm) {
    RelativeDateFormatter formatter("en_US", "UTC");
    EXPECT_EQ(formatter.text({std::nan("")}, kNow), "");
    EXPECT_NE(formatter.text({std::numeric_limits<double>::infinity()}, kNow).find("in "), std::string::npos);
    EXPECT_NE(formatter.text({-1e300}, kNow).find(" ago"), std::string::npos);
}

TEST(RelativeDates, WithoutALocaleTakeTheUsers) {
    RelativeDateFormatter formatter;
    EXPECT_FALSE(formatter.text({kNow.secondsSinceReference - kHour}, kNow).empty());
}

} // namespace
} // namespace fernwick::support
