#include "support/CalendarDate.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

namespace fernwick::support {
namespace {

constexpr Date kEvening{816468075.0}; // 2026-11-15T20:41:15Z

// With every kind of blank as a plain one: which of them a language uses is up to the version of ICU.
std::string plain(std::string text) {
    for (const std::string blank : {"\u00a0", "\u202f", "\u2009"}) {
        for (auto at = text.find(blank); at != std::string::npos; at = text.find(blank)) {
            text.replace(at, blank.size(), " ");
        }
    }
    return text;
}

std::string told(const std::string& locale, const std::string& timeZone) {
    return plain(CalendarDateFormatter(locale, timeZone).text(kEvening));
}

} // namespace

TEST(CalendarDate, IsToldInTheLanguage) {
    EXPECT_EQ(told("en_US", "UTC"), "Nov 15, 2026, 8:41 PM");
    EXPECT_EQ(told("de_DE", "UTC"), "15.11.2026, 20:41");
}

TEST(CalendarDate, IsToldInTheTimeZone) {
    EXPECT_EQ(told("en_US", "Asia/Ho_Chi_Minh"), "Nov 16, 2026, 3:41 AM");
}

TEST(CalendarDate, FormatterMayBeUsedAgain) {
    CalendarDateFormatter formatter("en_US", "UTC");
    EXPECT_EQ(plain(formatter.text(kEvening)), "Nov 15, 2026, 8:41 PM");
    EXPECT_EQ(plain(formatter.text({kEvening.secondsSinceReference + 60})), "Nov 15, 2026, 8:42 PM");
}

TEST(CalendarDate, WithoutALocaleItIsTheUsers) {
    EXPECT_FALSE(CalendarDateFormatter().text(kEvening).empty());
}

TEST(CalendarDate, DatesBeyondAllCalendarsDoNoHarm) {
    CalendarDateFormatter formatter("en_US", "UTC");
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    EXPECT_EQ(formatter.text({std::nan("")}), "");
    EXPECT_NE(formatter.text({kInfinity}), "");
    EXPECT_NE(formatter.text({-kInfinity}), "");
}

} // namespace fernwick::support
