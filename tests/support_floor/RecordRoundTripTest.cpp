#include "support/RecordReader.h"
#include "support/RecordWriter.h"
#include "support_floor/SampleRecords.h"

#include <gmock/gmock.h>

#include <bit>
#include <limits>
#include <random>

namespace fernwick::support::testing {
namespace {

template <class R>
std::vector<R> roundTrip(const std::vector<R>& list) {
    const auto json = encodeList(list);
    EXPECT_TRUE(json);
    auto decoded = decodeList<R>(json.value_or(""));
    EXPECT_TRUE(decoded) << decoded.error().path << " " << decoded.error().message;
    return decoded.value_or(std::vector<R>{});
}

TEST(RecordRoundTrip, KeepsRecordsOfEveryFieldType) {
    Voyage second;
    second.captain.reset();
    const std::vector<Voyage> voyages{sampleVoyage(), second, sampleVoyage()};
    EXPECT_EQ(roundTrip(voyages), voyages);
}

TEST(RecordRoundTrip, KeepsEveryAsciiCharacter) {
    std::string all;
    for (char character = 0; character < 127; ++character) {
        all += character;
    }
    const std::vector<Note> notes{{all}, {std::string(1, '\x7F')}};
    EXPECT_EQ(roundTrip(notes), notes);
}

TEST(RecordRoundTrip, KeepsTextsOfAllScripts) {
    const std::vector<Note> notes{
        {"Đà Nẵng"}, {"İstanbul"},           {"Straße"},    {"日本語"}, {"👩‍👩‍👧‍👦 🇻🇳"},
        {"e\u0301"}, {"\u2028\uFEFF\uFFFD"}, {"\U0010FFFF"}};
    EXPECT_EQ(roundTrip(notes), notes);
}

TEST(RecordRoundTrip, KeepsLongTexts) {
    std::string mixed;
    for (int index = 0; index < 2'000; ++index) {
        mixed += "a\"\n\\ế";
    }
    const std::vector<Note> notes{
        {std::string(10'000, 'x')}, {std::string(10'000, '\\')}, {std::string(10'000, '"')}, {mixed}};
    EXPECT_EQ(roundTrip(notes), notes);
}

TEST(RecordRoundTrip, KeepsDoublesToTheLastBit) {
    std::vector<Point> points;
    for (const double special : {0.0, -1.5, 1e15, 1e17, 1e18, 1e19, 1.8446744073709552e19, 1e22, 0.1 + 0.2,
                                 std::numeric_limits<double>::max(), std::numeric_limits<double>::min(),
                                 std::numeric_limits<double>::denorm_min(), 123456789012345683968.0}) {
        points.push_back({.x = 1, .y = special});
    }
    std::mt19937_64 random(7);
    while (points.size() < 2'000) {
        if (const auto number = std::bit_cast<double>(random()); std::isfinite(number)) {
            points.push_back({.x = 2, .y = number});
        }
    }
    EXPECT_EQ(roundTrip(points), points);
}

TEST(RecordRoundTrip, KeepsTheLimitsOfIntegers) {
    std::vector<Draft> drafts;
    for (const auto number : {std::numeric_limits<std::int64_t>::min(), std::int64_t{-1}, std::int64_t{0},
                              std::int64_t{9007199254740993}, std::numeric_limits<std::int64_t>::max()}) {
        drafts.push_back({.title = "", .pages = number});
    }
    EXPECT_EQ(roundTrip(drafts), drafts);
}

TEST(RecordRoundTrip, KeepsListsOfManyRecords) {
    std::vector<Note> notes(20'000);
    for (std::size_t index = 0; index < notes.size(); ++index) {
        notes[index].text.assign(index % 97, index % 5 == 0 ? '}' : 'n');
    }
    EXPECT_EQ(roundTrip(notes), notes);
}

} // namespace
} // namespace fernwick::support::testing
