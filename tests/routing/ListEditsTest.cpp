#include "routing/ListEdits.h"

#include <gtest/gtest.h>

#include <string>

namespace fernwick {
namespace {

struct MoveRow {
    std::string name;
    ListOffsets from;
    std::size_t to;
    std::string result;
};

class MoveOffsets : public testing::TestWithParam<MoveRow> {};

TEST_P(MoveOffsets, PutsTheElementsInFrontOfThatPlace) {
    std::vector list{'a', 'b', 'c', 'd', 'e'};
    moveOffsets(list, GetParam().from, GetParam().to);
    EXPECT_EQ(std::string(list.begin(), list.end()), GetParam().result);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, MoveOffsets,
    testing::Values(MoveRow{"Down", {0}, 3, "bcade"}, MoveRow{"Up", {3}, 1, "adbce"},
                    MoveRow{"ToTheEnd", {1}, 5, "acdeb"}, MoveRow{"ToTheStart", {4}, 0, "eabcd"},
                    MoveRow{"BeforeItself", {2}, 2, "abcde"}, MoveRow{"BehindItself", {2}, 3, "abcde"},
                    MoveRow{"SeveralKeepTheirOrder", {4, 0}, 2, "baecd"},
                    MoveRow{"FromBothSidesOfThePlace", {0, 2, 4}, 3, "baced"}, MoveRow{"None", {}, 2, "abcde"},
                    MoveRow{"All", {0, 1, 2, 3, 4}, 3, "abcde"}, MoveRow{"Twice", {0, 0}, 2, "bacde"},
                    MoveRow{"PlaceBeyondTheEnd", {0}, 99, "bcdea"},
                    MoveRow{"OffsetBeyondTheEnd", {5, 99}, 0, "abcde"}),
    [](const auto& row) { return row.param.name; });

TEST(TakeOffsets, ReturnsTheElementsInTheirOrder) {
    std::vector list{'a', 'b', 'c', 'd', 'e'};
    EXPECT_EQ(takeOffsets(list, {3, 0, 3, 7}), (std::vector{'a', 'd'}));
    EXPECT_EQ(list, (std::vector{'b', 'c', 'e'}));
    EXPECT_TRUE(takeOffsets(list, {}).empty());
    EXPECT_EQ(list, (std::vector{'b', 'c', 'e'}));
}

} // namespace
} // namespace fernwick
