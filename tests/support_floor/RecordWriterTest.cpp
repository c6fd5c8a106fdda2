#include "support/RecordWriter.h"

#include "support_floor/SampleRecords.h"

#include <gmock/gmock.h>

#include <cmath>
#include <limits>

namespace fernwick::support::testing {
namespace {

std::string encoded(const std::string& text) {
    return encodeList<Note>({{text}}).value_or("failed");
}

std::string encodedNumber(double number) {
    return encodeList<Point>({{.x = 0, .y = number}}).value_or("failed");
}

TEST(RecordWriter, WritesEveryFieldInTheOrderOfTheTable) {
    EXPECT_EQ(encodeList<Voyage>({sampleVoyage()}), std::string(kVoyageJson));
}

TEST(RecordWriter, WritesAnEmptyListAsEmptyArray) {
    EXPECT_EQ(encodeList<Voyage>({}), "[]");
}

TEST(RecordWriter, LeavesOutTheKeysOfAbsentOptionals) {
    Voyage voyage = sampleVoyage();
    voyage.captain.reset();
    voyage.endedAt.reset();
    const auto json = encodeList<Voyage>({voyage});
    ASSERT_TRUE(json);
    EXPECT_THAT(*json, ::testing::HasSubstr(R"("weather":"Storm","ships":)"));
}

TEST(RecordWriter, SeparatesFieldsWhenTheFirstOnesAreAbsent) {
    EXPECT_EQ(encodeList<Draft>({{}, {.title = {}, .pages = 3}, {.title = "a", .pages = 4}}),
              R"([{},{"pages":3},{"title":"a","pages":4}])");
}

TEST(RecordWriter, EscapesWhatJsonDemandsAndNothingElse) {
    EXPECT_EQ(encoded("a/b\"c\\d"), R"([{"text":"a/b\"c\\d"}])");
    EXPECT_EQ(encoded("\b\t\n\f\r"), R"([{"text":"\b\t\n\f\r"}])");
    EXPECT_EQ(encoded("\x01\x1F\x7F"), "[{\"text\":\"\\u0001\\u001F\x7F\"}]");
    EXPECT_EQ(encoded(std::string("x\0y", 3)), R"([{"text":"x\u0000y"}])");
    EXPECT_EQ(encoded("Đà Nẵng 🚇 </script>"), R"([{"text":"Đà Nẵng 🚇 </script>"}])");
}

TEST(RecordWriter, EscapesAtEveryPlaceOfALongText) {
    for (std::size_t at = 0; at < 40; ++at) {
        std::string text(40, 'x');
        text[at] = '"';
        const std::string expected = std::string(at, 'x') + "\\\"" + std::string(39 - at, 'x');
        EXPECT_EQ(encoded(text), R"([{"text":")" + expected + R"("}])");
    }
}

TEST(RecordWriter, WritesNumbersInTheirShortestForm) {
    EXPECT_EQ(encodedNumber(0.1), R"([{"x":0,"y":0.1}])");
    EXPECT_EQ(encodedNumber(3.0), R"([{"x":0,"y":3}])");
    EXPECT_EQ(encodedNumber(-2.5), R"([{"x":0,"y":-2.5}])");
    EXPECT_EQ(encodedNumber(789012345.678901), R"([{"x":0,"y":789012345.678901}])");
    EXPECT_EQ(encodedNumber(123456789012345683968.0), R"([{"x":0,"y":1.2345678901234568e+20}])");
}

TEST(RecordWriter, FailsOnNumbersThatJsonLacks) {
    EXPECT_EQ(encodedNumber(std::numeric_limits<double>::infinity()), "failed");
    EXPECT_EQ(encodedNumber(-std::numeric_limits<double>::infinity()), "failed");
    EXPECT_EQ(encodedNumber(std::nan("")), "failed");
}

struct BadText {
    const char* name;
    std::string text;
};

class RecordWriterBadText : public ::testing::TestWithParam<BadText> {};

TEST_P(RecordWriterBadText, Fails) {
    EXPECT_EQ(encoded(GetParam().text), "failed");
    EXPECT_EQ(encoded("some text in front of it" + GetParam().text), "failed");
}

INSTANTIATE_TEST_SUITE_P(RecordWriter, RecordWriterBadText,
                         ::testing::Values(BadText{"LoneContinuation", "\x80"}, BadText{"CutShort", "\xE1\xBA"},
                                           BadText{"Overlong", "\xC0\xAF"},
                                           BadText{"Surrogate", "\xED\xA0\x80"},
                                           BadText{"BeyondUnicode", "\xF4\x90\x80\x80"},
                                           BadText{"NoUtf8Byte", "abcdefg\xFF"}),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(RecordWriter, TellsWhereItFailed) {
    Voyage voyage = sampleVoyage();
    voyage.stops[1].y = std::nan("");
    const auto json = encodeList<Voyage>({sampleVoyage(), voyage});
    ASSERT_FALSE(json);
    EXPECT_EQ(json.error().path, "[1].stops[1].y");
    EXPECT_EQ(json.error().message, "number is not finite");
}

TEST(RecordWriter, GrowsWhenLaterRecordsAreMuchLonger) {
    std::vector<Note> notes(100, Note{"short"});
    notes.back().text.assign(100'000, 'x');
    const auto json = encodeList(notes);
    ASSERT_TRUE(json);
    EXPECT_EQ(json->size(), 99 * std::string_view(R"({"text":"short"},)").size() + 100'000 + 13);
}

} // namespace
} // namespace fernwick::support::testing
