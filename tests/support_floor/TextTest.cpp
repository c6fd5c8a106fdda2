#include "support/Text.h"

#include <gtest/gtest.h>
#include <unicode/locid.h>

namespace fernwick::support {
namespace {

TEST(Text, TrimBlanksTakesBlanksOffBothEnds) {
    EXPECT_EQ(trimBlanks(" \t a b \t"), "a b");
    EXPECT_EQ(trimBlanks("\u00A0\u2003\u3000ế\u00A0"), "ế");
    EXPECT_EQ(trimBlanks("ế"), "ế");
    EXPECT_EQ(trimBlanks("x"), "x");
}

TEST(Text, TrimBlanksKeepsLineEnds) {
    EXPECT_EQ(trimBlanks(" \n a \r\n "), "\n a \r\n");
    EXPECT_EQ(trimBlanks("\u2028 a"), "\u2028 a");
}

TEST(Text, NumbersOfEveryScriptAreNumbers) {
    for (const auto* const text : {"7-Zip", "0", "٣", "⅚", "㊈", "万"}) {
        EXPECT_TRUE(startsWithNumber(text)) << text;
    }
    for (const auto* const text : {"", "a1", "-1", " 1", ".1", "ế", "🚀", "\xFF", "\xE4\xB8"}) {
        EXPECT_FALSE(startsWithNumber(text)) << text;
    }
}

TEST(Text, TrimBlanksOfBlanksIsEmpty) {
    EXPECT_EQ(trimBlanks(""), "");
    EXPECT_EQ(trimBlanks(" \t\u3000"), "");
}

TEST(Text, TrimBlanksLeavesInvalidBytes) {
    EXPECT_EQ(trimBlanks(" \xFF \xE1 "), "\xFF \xE1");
}

TEST(Text, IsWhiteSpaceKnowsLineEndsAndUnicodeSpaces) {
    EXPECT_TRUE(isWhiteSpace(""));
    EXPECT_TRUE(isWhiteSpace(" \t\r\n\v\f"));
    EXPECT_TRUE(isWhiteSpace("\u0085\u00A0\u2028\u2029\u3000"));
    EXPECT_FALSE(isWhiteSpace(" a "));
    EXPECT_FALSE(isWhiteSpace("\u200B")); // of no width, and no white space to Unicode
    EXPECT_FALSE(isWhiteSpace(" \xFF"));
}

TEST(Text, IsValidUtf8RejectsWhatUnicodeDoes) {
    EXPECT_TRUE(isValidUtf8(""));
    EXPECT_TRUE(isValidUtf8(std::string_view("a\0b", 3)));
    EXPECT_TRUE(isValidUtf8("Đà Nẵng 🚇 \U0010FFFF"));
    EXPECT_FALSE(isValidUtf8("\x80"));
    EXPECT_FALSE(isValidUtf8("\xE1\xBA"));
    EXPECT_FALSE(isValidUtf8("\xC0\xAF"));
    EXPECT_FALSE(isValidUtf8("\xED\xA0\x80"));
    EXPECT_FALSE(isValidUtf8("\xF4\x90\x80\x80"));
}

// One search: in which language, for what, in what, and whether it is found.
struct Search {
    const char* name;
    const char* locale;
    std::string needle;
    std::string haystack;
    bool found;
};

void PrintTo(const Search& search, std::ostream* out) {
    *out << search.needle << " in " << search.haystack;
}

class CaselessNeedleSearch : public ::testing::TestWithParam<Search> {
protected:
    void SetUp() override { setLocale(icu::Locale(GetParam().locale)); }
    void TearDown() override { setLocale(before_); }

private:
    static void setLocale(const icu::Locale& locale) {
        UErrorCode status = U_ZERO_ERROR;
        icu::Locale::setDefault(locale, status);
        ASSERT_TRUE(U_SUCCESS(status));
    }

    icu::Locale before_;
};

TEST_P(CaselessNeedleSearch, Finds) {
    EXPECT_EQ(CaselessNeedle(GetParam().needle).isIn(GetParam().haystack), GetParam().found);
}

const auto kRowName = [](const auto& row) { return std::string(row.param.name); };

INSTANTIATE_TEST_SUITE_P(
    English, CaselessNeedleSearch,
    ::testing::Values(Search{"Same", "en_US", "web", "web", true},
                      Search{"Inside", "en_US", "EB", "my web server", true},
                      Search{"AtTheEnd", "en_US", "Server", "my web SERVER", true},
                      Search{"NotThere", "en_US", "web2", "my web server", false},
                      Search{"LongerThanTheText", "en_US", "webs", "web", false},
                      Search{"EmptyNeedle", "en_US", "", "web", true},
                      Search{"EmptyBoth", "en_US", "", "", true}, Search{"EmptyText", "en_US", "a", "", false},
                      Search{"Blanks", "en_US", "b s", "web server", true},
                      Search{"Punctuation", "en_US", "[A@Z]", "x[a@z]", true},
                      Search{"NeighboursOfLetters", "en_US", "@[`{", "`{@[", false},
                      Search{"DotlessIsNoI", "en_US", "ı", "I", false},
                      Search{"SignForALetter", "en_US", "\u212A", "k", true}, // the Kelvin sign
                      Search{"AccentsCount", "en_US", "e", "é", false},
                      Search{"AccentsWithoutComposedForm", "en_US", "x", "x\u030C", false},
                      Search{"PlainOneBehindAccented", "en_US", "x", "x\u030Cx", true},
                      Search{"Nul", "en_US", std::string("\0B", 2), std::string("a\0b", 3), true}),
    kRowName);

INSTANTIATE_TEST_SUITE_P(
    OtherScripts, CaselessNeedleSearch,
    ::testing::Values(Search{"GermanSharpS", "de_DE", "STRASSE", "Hauptstraße 5", true},
                      Search{"GermanCapitalSharpS", "de_DE", "straße", "STRAẞE", true},
                      Search{"GermanUmlaut", "de_DE", "MÜN", "münchen", true},
                      Search{"GermanDecomposedUmlaut", "de_DE", "mu\u0308n", "MÜNCHEN", true},
                      Search{"VietnameseUpperCase", "vi_VN", "ĐÀ NẴNG", "máy chủ Đà Nẵng", true},
                      Search{"VietnameseDecomposedText", "vi_VN", "nẵng", "Đa\u0300 Na\u0306\u0303ng", true},
                      Search{"VietnameseDecomposedNeedle", "vi_VN", "NA\u0306\u0303NG", "Đà Nẵng", true},
                      Search{"VietnameseOtherTone", "vi_VN", "nắng", "Đà Nẵng", false},
                      Search{"VietnameseAsciiNeedle", "vi_VN", "MAY", "may máy", true},
                      Search{"GreekFinalSigma", "el_GR", "ΟΔΟΣ", "οδος", true},
                      Search{"GreekTwoAccents", "el_GR", "\u0390", "\u03AA\u0301", true},
                      Search{"Cyrillic", "ru_RU", "МОСКВА", "Сервер Москва", true},
                      Search{"Emoji", "en_US", "🚇", "Tunnel 🚇 1", true},
                      Search{"OtherEmoji", "en_US", "🚀", "Tunnel 🚇 1", false},
                      Search{"Chinese", "zh_CN", "服务", "生产服务器", true}),
    kRowName);

INSTANTIATE_TEST_SUITE_P(Turkic, CaselessNeedleSearch,
                         ::testing::Values(Search{"DottedCapital", "tr_TR", "İZMİR", "izmir", true},
                                           Search{"DottedSmall", "tr_TR", "izmir", "İZMİR", true},
                                           Search{"DottedDecomposed", "tr_TR", "I\u0307zmir", "izmir", true},
                                           Search{"DotlessCapital", "tr_TR", "IRMAK", "ırmak", true},
                                           Search{"DotlessSmall", "tr_TR", "ırmak", "KIZILIRMAK", true},
                                           Search{"PlainCapitalIsDotless", "tr_TR", "izmir", "IZMIR", false},
                                           Search{"Azeri", "az_AZ", "bakı", "BAKI", true},
                                           Search{"ElsewherePlainCapitalIsDotted", "en_US", "izmir", "IZMIR",
                                                  true}),
                         kRowName);

TEST(CaselessNeedle, SearchesLongTexts) {
    const std::string text = std::string(10'000, 'a') + "ế" + std::string(10'000, 'A') + "B";
    EXPECT_TRUE(CaselessNeedle("AAAẾaaa").isIn(text));
    EXPECT_TRUE(CaselessNeedle("aB").isIn(text));
    EXPECT_FALSE(CaselessNeedle("bb").isIn(text));
}

TEST(CaselessNeedle, LivesWithInvalidBytes) {
    EXPECT_TRUE(CaselessNeedle("web").isIn("\xFF Web \xE1"));
    EXPECT_FALSE(CaselessNeedle("web").isIn("\xFFWe\xE1"));
}

} // namespace
} // namespace fernwick::support
