#include "support/StandardOutput.h"

#include <gtest/gtest.h>

#include <cstdio>

namespace fernwick::support {
namespace {

TEST(StandardOutput, LineIsPrintedAtOnceWithALineFeed) {
    testing::internal::CaptureStdout();
    printLine("[Tag] ❌ một dòng");
    printLine("");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "[Tag] ❌ một dòng\n\n");
}

TEST(StandardOutput, LineThatNobodyCanReadIsDropped) {
    testing::internal::CaptureStdout();
    ASSERT_NE(std::freopen("/dev/full", "w", stdout), nullptr);
    printLine("lost");
    std::clearerr(stdout);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

} // namespace
} // namespace fernwick::support
