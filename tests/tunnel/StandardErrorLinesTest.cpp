#include "tunnel/StandardErrorLines.h"

#include <gtest/gtest.h>

namespace fernwick {
namespace {

using Lines = std::vector<std::string>;

TEST(StandardErrorLines, SplitsAtLineFeedsAndDropsEmptyPieces) {
    EXPECT_EQ(standardErrorLines("one\n\ntwo\r\n three \n"), (Lines{"one", "two\r", " three "}));
}

TEST(StandardErrorLines, KeepsALineOfBlanksAmongOthers) {
    EXPECT_EQ(standardErrorLines("one\n  \ntwo"), (Lines{"one", "  ", "two"}));
}

TEST(StandardErrorLines, NothingComesOfWhiteSpaceOrBrokenUtf8) {
    EXPECT_EQ(standardErrorLines(""), Lines{});
    EXPECT_EQ(standardErrorLines(" \n\t\r\n"), Lines{});
    EXPECT_EQ(standardErrorLines("good\n\xff\xfe bad\n"), Lines{});
    EXPECT_EQ(standardErrorLines("cut in the middle \xe2\x9c"), Lines{});
}

TEST(StandardErrorLines, LevelFollowsTheWordsInAnyLetterCase) {
    EXPECT_EQ(standardErrorLevel("ssh: Error in everything"), LogLevel::error);
    EXPECT_EQ(standardErrorLevel("Permission DENIED (publickey)."), LogLevel::error);
    EXPECT_EQ(standardErrorLevel("Warning: Permanently added"), LogLevel::warning);
    EXPECT_EQ(standardErrorLevel("warning: denied"), LogLevel::error);
    EXPECT_EQ(standardErrorLevel("warning: an error"), LogLevel::error);
    EXPECT_EQ(standardErrorLevel("Authenticated."), LogLevel::info);
}

} // namespace
} // namespace fernwick
