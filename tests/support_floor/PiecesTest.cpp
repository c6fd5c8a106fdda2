#include "support/Pieces.h"

#include <gtest/gtest.h>

namespace fernwick::support {
namespace {

using Pieces = std::vector<std::string_view>;

TEST(Pieces, StandBetweenTheSeparatorsAndEmptyOnesAreLeftOut) {
    EXPECT_EQ(piecesOf("a.b.c", '.'), (Pieces{"a", "b", "c"}));
    EXPECT_EQ(piecesOf("..a..b..", '.'), (Pieces{"a", "b"}));
    EXPECT_EQ(piecesOf("a", '.'), Pieces{"a"});
    EXPECT_EQ(piecesOf(" ", '.'), Pieces{" "});
    EXPECT_EQ(piecesOf("", '.'), Pieces{});
    EXPECT_EQ(piecesOf("...", '.'), Pieces{});
}

TEST(Pieces, AreNotAskedForBehindTheOneThatEndsTheWalk) {
    Pieces seen;
    const auto untilB = [&](std::string_view piece) {
        seen.push_back(piece);
        return piece != "b";
    };
    EXPECT_FALSE(forEachPiece("a.b.c", '.', untilB));
    EXPECT_EQ(seen, (Pieces{"a", "b"}));
    EXPECT_TRUE(forEachPiece("c.d", '.', untilB));
}

} // namespace
} // namespace fernwick::support
