#include "support/Secret.h"

#include <gtest/gtest.h>

#include <array>

namespace fernwick::support {
namespace {

TEST(Secret, HoldsBytesOfEveryKind) {
    const std::string_view text("a'b$\0\xff ờ", 9);
    EXPECT_EQ(Secret(text).text(), text);
    EXPECT_TRUE(Secret().empty());
    EXPECT_TRUE(Secret("").empty());
}

TEST(Secret, MovesWithoutLeavingACopy) {
    Secret first("hunter2");
    const auto* bytes = first.text().data();
    Secret second(std::move(first));
    EXPECT_EQ(second.text().data(), bytes);
    EXPECT_TRUE(first.empty()); // NOLINT(bugprone-use-after-move): what it holds then is the question
    Secret third;
    third = std::move(second);
    EXPECT_EQ(third.text(), "hunter2");
}

TEST(Secret, WipeOverwritesEveryByte) {
    std::array<char, 7> bytes{'h', 'u', 'n', 't', 'e', 'r', '2'};
    wipe(bytes.data(), bytes.size());
    EXPECT_EQ(bytes, (std::array<char, 7>{}));
}

TEST(Secret, WipedStringIsEmptyAndHoldsNothingBeyondItsEnd) {
    std::string text = "a password that is longer than a short string";
    text.resize(10);
    const auto* bytes = text.data();
    wipe(text);
    EXPECT_TRUE(text.empty());
    for (std::size_t at = 0; at < 40; ++at) {
        EXPECT_EQ(bytes[at], '\0') << at;
    }
}

} // namespace
} // namespace fernwick::support
