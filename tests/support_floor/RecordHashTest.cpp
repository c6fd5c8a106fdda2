#include "support/RecordHash.h"

#include "support_floor/SampleRecords.h"

#include <gtest/gtest.h>

#include <functional>

namespace fernwick::support::testing {
namespace {

TEST(RecordHash, IsEqualForEqualRecords) {
    EXPECT_EQ(hashOf(sampleVoyage()), hashOf(sampleVoyage()));
}

TEST(RecordHash, IsEqualForBothZeros) {
    EXPECT_EQ(hashOf(Point{.x = 0, .y = 0.0}), hashOf(Point{.x = 0, .y = -0.0}));
}

struct Edit {
    const char* name;
    std::function<void(Voyage&)> apply;
};

class RecordHashEdit : public ::testing::TestWithParam<Edit> {};

TEST_P(RecordHashEdit, ChangesTheHash) {
    Voyage edited = sampleVoyage();
    GetParam().apply(edited);
    EXPECT_NE(hashOf(edited), hashOf(sampleVoyage()));
}

INSTANTIATE_TEST_SUITE_P(
    RecordHash, RecordHashEdit,
    ::testing::Values(Edit{"Id", [](Voyage& voyage) { voyage.id.bytes[15] ^= 1; }},
                      Edit{"Text", [](Voyage& voyage) { voyage.name += ' '; }},
                      Edit{"Bool", [](Voyage& voyage) { voyage.finished = false; }},
                      Edit{"Integer", [](Voyage& voyage) { ++voyage.miles; }},
                      Edit{"Date", [](Voyage& voyage) { voyage.startedAt.secondsSinceReference += 0.001; }},
                      Edit{"RawText", [](Voyage& voyage) { voyage.weather = Weather::calm; }},
                      Edit{"AbsentText", [](Voyage& voyage) { voyage.captain.reset(); }},
                      Edit{"AbsentDate", [](Voyage& voyage) { voyage.endedAt.reset(); }},
                      Edit{"OtherOptional", [](Voyage& voyage) { voyage.endedAt = Date{1}; }},
                      Edit{"EmptiedList", [](Voyage& voyage) { voyage.ships.clear(); }},
                      Edit{"NestedRecord", [](Voyage& voyage) { voyage.from.x = 3; }},
                      Edit{"OrderInList", [](Voyage& voyage) { std::swap(voyage.stops[0], voyage.stops[1]); }}),
    [](const auto& row) { return std::string(row.param.name); });

} // namespace
} // namespace fernwick::support::testing
