#include "support/Date.h"

#include <gtest/gtest.h>

namespace fernwick::support {
namespace {

using namespace std::chrono_literals;
using SystemTime = std::chrono::system_clock::time_point;

TEST(Date, CountsFromTheFirstDayOf2001) {
    constexpr std::chrono::sys_days kReference = std::chrono::year{2001} / std::chrono::January / 1;
    EXPECT_EQ(Date::fromSystem(kReference).secondsSinceReference, 0.0);
    EXPECT_EQ(Date::fromSystem(kReference + 36h).secondsSinceReference, 129600.0);
}

TEST(Date, IsNegativeBeforeItsReference) {
    EXPECT_EQ(Date::fromSystem(SystemTime{}).secondsSinceReference, -978307200.0);
}

TEST(Date, KeepsFractionsOfSeconds) {
    EXPECT_EQ(Date::fromSystem(SystemTime{978307200s + 250ms}).secondsSinceReference, 0.25);
}

TEST(Date, ConvertsBackToTheUnixEpoch) {
    EXPECT_EQ(Date{0.5}.secondsSinceUnixEpoch(), 978307200.5);
}

TEST(Date, OrdersByTime) {
    EXPECT_LT(Date{1.0}, Date{1.5});
    EXPECT_EQ(Date{2.0}, Date{2.0});
}

} // namespace
} // namespace fernwick::support
