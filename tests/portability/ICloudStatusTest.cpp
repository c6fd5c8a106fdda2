#include "portability/ICloudStatus.h"

#include <gtest/gtest.h>

namespace fernwick {
namespace {

TEST(ICloudStatus, EachCaseHasItsLabel) {
    EXPECT_EQ(ICloudStatus().label(), "Checking...");
    EXPECT_EQ(ICloudStatus(ICloudStatus::checking).label(), "Checking...");
    EXPECT_EQ(ICloudStatus(ICloudStatus::available).label(), "Available");
    EXPECT_EQ(ICloudStatus(ICloudStatus::unavailable).label(), "Not signed in to iCloud");
    EXPECT_EQ(ICloudStatus(ICloudStatus::syncing).label(), "Syncing...");
    EXPECT_EQ(ICloudStatus(ICloudStatus::synced).label(), "Synced");
    EXPECT_EQ(ICloudStatus(ICloudStatus::error, "no ✓").label(), "Error: no ✓");
}

TEST(ICloudStatus, IsComparedWithItsMessage) {
    EXPECT_EQ(ICloudStatus(ICloudStatus::synced), ICloudStatus::synced);
    EXPECT_NE(ICloudStatus(ICloudStatus::error, "a"), ICloudStatus(ICloudStatus::error, "b"));
}

} // namespace
} // namespace fernwick
