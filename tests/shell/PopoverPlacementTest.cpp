#include "shell/PopoverPlacement.h"

#include <gtest/gtest.h>

#include <string>

namespace fernwick {
namespace {

constexpr QSize kPopover(290, 500);

struct PlaceRow {
    std::string name;
    QRect icon;
    QRect available;
    QPoint corner;
};

class Placement : public testing::TestWithParam<PlaceRow> {};

TEST_P(Placement, IsBesideTheIconAndInsideTheScreen) {
    const QRect whole(0, 0, 1280, 800);
    const QPoint corner = popoverCorner(kPopover, GetParam().icon, {whole, GetParam().available});
    EXPECT_EQ(corner.x(), GetParam().corner.x());
    EXPECT_EQ(corner.y(), GetParam().corner.y());
}

INSTANTIATE_TEST_SUITE_P(
    Table, Placement,
    testing::Values(PlaceRow{"PanelAtTheTop", {600, 0, 24, 24}, {0, 24, 1280, 776}, {466, 28}},
                    PlaceRow{"TopRightCorner", {1250, 0, 24, 24}, {0, 24, 1280, 776}, {990, 28}},
                    PlaceRow{"TopLeftCorner", {2, 0, 24, 24}, {0, 24, 1280, 776}, {0, 28}},
                    PlaceRow{"PanelAtTheBottom", {600, 776, 24, 24}, {0, 0, 1280, 776}, {466, 272}},
                    PlaceRow{"BottomRightCorner", {1250, 776, 24, 24}, {0, 0, 1280, 776}, {990, 272}},
                    PlaceRow{"PanelAtTheLeft", {0, 400, 24, 24}, {24, 0, 1256, 800}, {28, 161}},
                    PlaceRow{"PanelAtTheRight", {1256, 780, 24, 20}, {0, 0, 1256, 800}, {962, 300}},
                    PlaceRow{"PanelThatKeepsNoRoom", {600, 770, 24, 24}, {0, 0, 1280, 800}, {466, 266}},
                    PlaceRow{"PointerInTheUpperHalf", {640, 100, 1, 1}, {0, 0, 1280, 800}, {495, 105}},
                    PlaceRow{"ScreenTooSmall", {30, 0, 24, 24}, {0, 24, 200, 400}, {0, 24}}),
    [](const auto& row) { return row.param.name; });

} // namespace
} // namespace fernwick
