#include "support/RecordReader.h"

#include "support_floor/SampleRecords.h"

#include <gmock/gmock.h>

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace fernwick::support::testing {
namespace {

// The sample's JSON with one place changed.
std::string changed(std::string_view from, std::string_view to) {
    std::string json(kVoyageJson);
    const auto at = json.find(from);
    EXPECT_NE(at, std::string::npos) << from;
    return json.replace(at, from.size(), to);
}

TEST(RecordReader, ReadsEveryField) {
    const auto list = decodeList<Voyage>(kVoyageJson);
    ASSERT_TRUE(list) << list.error().path << " " << list.error().message;
    EXPECT_THAT(*list, ::testing::ElementsAre(sampleVoyage()));
}

struct Change {
    const char* name;
    std::string from;
    std::string to;
    std::string failsAt; // the error's path; empty when the text is still the sample
};

void PrintTo(const Change& change, std::ostream* out) {
    *out << change.from << " -> " << change.to;
}

class RecordReaderChange : public ::testing::TestWithParam<Change> {};

TEST_P(RecordReaderChange, DecodesToTheSameOrFailsAtItsPlace) {
    const auto list = decodeList<Voyage>(changed(GetParam().from, GetParam().to));
    if (GetParam().failsAt.empty()) {
        ASSERT_TRUE(list) << list.error().path << " " << list.error().message;
        EXPECT_THAT(*list, ::testing::ElementsAre(sampleVoyage()));
    } else {
        ASSERT_FALSE(list);
        EXPECT_EQ(list.error().path, GetParam().failsAt);
        EXPECT_NE(list.error().message, "");
    }
}

const auto kRowName = [](const auto& row) { return std::string(row.param.name); };

INSTANTIATE_TEST_SUITE_P(
    Tolerated, RecordReaderChange,
    ::testing::Values(Change{"WhiteSpace", R"([{"id":)", " \n\t[ \r{ \"id\" : ", ""},
                      Change{"WhiteSpaceBehind", "}]}]", "}]} ] \n", ""},
                      Change{"UuidInLowerCase", "0F8FAD5B-D9CB-469F", "0f8fad5b-d9cb-469f", ""},
                      Change{"UnknownKey", R"("name":)", R"("extra":{"name":[1,null,"}"]},"name":)", ""},
                      Change{"UnknownBrace", R"("name":)", R"("}":"},{","name":)", ""},
                      Change{"OtherOrder", R"("name":"North","finished":true)",
                             R"("finished":true,"name":"North")", ""},
                      Change{"EscapedKey", R"("name")", R"("n\u0061me")", ""},
                      Change{"EscapedText", "North", R"(\u004eor\u0074h)", ""},
                      Change{"IntegerWithFraction", "1200", "1200.0", ""},
                      Change{"IntegerWithExponent", "1200", "12e2", ""},
                      Change{"SmallIntegerWithFraction", R"("x":-3)", R"("x":-3.0)", ""},
                      Change{"DateWithFraction", "700000001", "700000001.0", ""},
                      Change{"DateWithExponent", "700000001", "7.00000001E8", ""},
                      Change{"LastOfTwoKeys", R"("miles":1200)", R"("miles":7,"miles":1200)", ""}),
    kRowName);

INSTANTIATE_TEST_SUITE_P(
    MissingKey, RecordReaderChange,
    ::testing::Values(Change{"First", R"("id":"0F8FAD5B-D9CB-469F-A165-70867728950E",)", "", "[0].id"},
                      Change{"Text", R"("name":"North",)", "", "[0].name"},
                      Change{"OtherCase", R"("name")", R"("Name")", "[0].name"},
                      Change{"List", R"("ships":["7C9E6679-7425-40DE-944B-E07FC1F90AE7"],)", "", "[0].ships"},
                      Change{"InNestedRecord", R"({"x":-3,"y":0.5})", R"({"x":-3})", "[0].from.y"},
                      Change{"InListOfRecords", R"({"x":3,"y":4.125})", "{}", "[0].stops[1].x"}),
    kRowName);

INSTANTIATE_TEST_SUITE_P(
    WrongType, RecordReaderChange,
    ::testing::Values(Change{"NumberForText", R"("North")", "5", "[0].name"},
                      Change{"NullForText", R"("North")", "null", "[0].name"},
                      Change{"TextForBool", "true", R"("true")", "[0].finished"},
                      Change{"NumberForBool", "true", "1", "[0].finished"},
                      Change{"TextForInteger", "1200", R"("1200")", "[0].miles"},
                      Change{"BoolForInteger", "1200", "true", "[0].miles"},
                      Change{"FractionForInteger", "1200", "1200.5", "[0].miles"},
                      Change{"TooLargeInteger", "1200", "9223372036854775808", "[0].miles"},
                      Change{"TooLargeWithExponent", "1200", "1e19", "[0].miles"},
                      Change{"TooLargeForInt", R"("x":-3)", R"("x":2147483648)", "[0].from.x"},
                      Change{"TextForDate", "700000000.25", R"("2023-03-08")", "[0].startedAt"},
                      Change{"UnknownRawText", "Storm", "Gale", "[0].weather"},
                      Change{"RawTextInOtherCase", "Storm", "storm", "[0].weather"},
                      Change{"NumberForRawText", R"("Storm")", "1", "[0].weather"},
                      Change{"NumberForOptional", R"("Ada")", "1", "[0].captain"},
                      Change{"ShortUuid", "0F8FAD5B-", "F8FAD5B-", "[0].id"},
                      Change{"BracedUuid", "70867728950E", "70867728950E}", "[0].id"},
                      Change{"UuidInList", "7C9E6679", "7C9E667G", "[0].ships[0]"},
                      Change{"ObjectForList", R"(["7C9E6679-7425-40DE-944B-E07FC1F90AE7"])", "{}", "[0].ships"},
                      Change{"ListForRecord", R"({"x":-3,"y":0.5})", "[-3,0.5]", "[0].from"},
                      Change{"FirstOfTwoKeys", R"("miles":1200)", R"("miles":"7","miles":1200)", "[0].miles"}),
    kRowName);

struct BadText {
    const char* name;
    std::string json;
};

class RecordReaderBadText : public ::testing::TestWithParam<BadText> {};

TEST_P(RecordReaderBadText, Fails) {
    EXPECT_FALSE(decodeList<Draft>(GetParam().json));
}

INSTANTIATE_TEST_SUITE_P(
    NoList, RecordReaderBadText,
    ::testing::Values(BadText{"Empty", ""}, BadText{"Blank", " "}, BadText{"Object", "{}"},
                      BadText{"Null", "null"}, BadText{"Open", "["}, BadText{"OpenBehindElement", "[{}"},
                      BadText{"OpenBehindComma", "[{},"}, BadText{"OpenText", R"([{"title":"a)"},
                      BadText{"OpenObject", R"([{"title":"a")"}, BadText{"Closed", "]"},
                      BadText{"OtherBracket", "[{}}"}, BadText{"Crossed", "[{]}"}, BadText{"OnlyComma", "[,]"},
                      BadText{"FirstComma", "[,{}]"}, BadText{"LastComma", "[{},]"},
                      BadText{"TwoCommas", "[{},,{}]"}, BadText{"NoComma", "[{}{}]"},
                      BadText{"Colon", "[{}:{}]"}, BadText{"LastCommaInObject", R"([{"title":"a",}])"},
                      BadText{"Behind", "[{}] x"}, BadText{"TwoLists", "[{}][{}]"},
                      BadText{"TwoEmptyLists", "[][]"}, BadText{"Numbers", "[1]"}, BadText{"Lists", "[[]]"},
                      BadText{"NullElement", "[null]"}, BadText{"Comment", "[/**/{}]"},
                      BadText{"NulBehind", std::string("[{}]\0", 5)}, BadText{"Mark", "\xEF\xBB\xBF[{}"}),
    kRowName);

INSTANTIATE_TEST_SUITE_P(
    BadJson, RecordReaderBadText,
    ::testing::Values(BadText{"SingleQuotes", "[{'title':'a'}]"}, BadText{"BareKey", R"([{title:"a"}])"},
                      BadText{"RawNewline", "[{\"title\":\"a\nb\"}]"},
                      BadText{"RawNul", std::string("[{\"title\":\"a\0b\"}]", 17)},
                      BadText{"UnknownEscape", R"([{"title":"\x41"}])"},
                      BadText{"ShortEscape", R"([{"title":"\u12"}])"},
                      BadText{"LoneHighSurrogate", R"([{"title":"\ud83d"}])"},
                      BadText{"LoneLowSurrogate", R"([{"title":"\ude80"}])"},
                      BadText{"SwappedSurrogates", R"([{"title":"\ude80\ud83d"}])"},
                      BadText{"InvalidUtf8", "[{\"title\":\"\xFF\"}]"},
                      BadText{"InvalidUtf8InUnknownKey", "[{\"\xC0\xAF\":0}]"},
                      BadText{"SurrogateInUnknownValue", R"([{"x":"\ud83d"}])"},
                      BadText{"LeadingZero", R"([{"pages":01}])"}, BadText{"LeadingPlus", R"([{"pages":+1}])"},
                      BadText{"NoDigits", R"([{"pages":1.}])"}, BadText{"NotANumber", R"([{"pages":NaN}])"},
                      BadText{"Infinite", R"([{"x":1e999}])"}, BadText{"Hexadecimal", R"([{"pages":0x1}])"},
                      BadText{"BadUnknownValue", R"([{"x":tru}])"}, BadText{"NoColon", R"([{"pages" 1}])"},
                      BadText{"DeepUnknownValue",
                              "[{\"x\":" + std::string(5000, '[') + std::string(5000, ']') + "}]"},
                      BadText{"DeepOpen", std::string(100'000, '[')},
                      BadText{"DeepObjects",
                              [] {
                                  std::string json = "[";
                                  for (int depth = 0; depth < 5000; ++depth) {
                                      json += R"({"x":)";
                                  }
                                  return json + "1" + std::string(5000, '}') + "]";
                              }()}),
    kRowName);

TEST(RecordReader, ReadsAnEmptyArrayAsEmptyList) {
    EXPECT_EQ(decodeList<Voyage>("[]"), std::vector<Voyage>{});
    EXPECT_EQ(decodeList<Voyage>(" [ ] "), std::vector<Voyage>{});
}

TEST(RecordReader, ReadsNullAndMissingKeysAsAbsentOptionals) {
    const auto list =
        decodeList<Voyage>(changed(R"("captain":"Ada","endedAt":700000001)", R"("captain":null)"));
    ASSERT_TRUE(list) << list.error().path << " " << list.error().message;
    EXPECT_EQ(list->front().captain, std::nullopt);
    EXPECT_EQ(list->front().endedAt, std::nullopt);
}

TEST(RecordReader, ClearsTheInitialValueOfAMissingOptional) {
    const auto list = decodeList<Voyage>(changed(R"("captain":"Ada",)", ""));
    ASSERT_TRUE(list);
    EXPECT_EQ(list->front().captain, std::nullopt);
}

TEST(RecordReader, TakesTheLastNullOfAnOptional) {
    EXPECT_THAT(decodeList<Draft>(R"([{"pages":1,"pages":null}])").value(), ::testing::ElementsAre(Draft{}));
}

TEST(RecordReader, OneBadRecordFailsTheWholeList) {
    std::string json(kVoyageJson);
    json.insert(json.size() - 1, "," + changed("1200", "null").substr(1));
    json.erase(json.size() - 1);
    const auto list = decodeList<Voyage>(json);
    ASSERT_FALSE(list);
    EXPECT_EQ(list.error().path, "[1].miles");
}

TEST(RecordReader, ReadsIntegersUpToTheirLimits) {
    EXPECT_EQ(decodeList<Draft>(R"([{"pages":9223372036854775807}])")->front().pages, INT64_MAX);
    EXPECT_EQ(decodeList<Draft>(R"([{"pages":-9223372036854775808}])")->front().pages, INT64_MIN);
    EXPECT_EQ(decodeList<Draft>(R"([{"pages":-9223372036854775808.0}])")->front().pages, INT64_MIN);
    EXPECT_EQ(decodeList<Point>(R"([{"x":2147483647,"y":1}])")->front().x, INT32_MAX);
}

TEST(RecordReader, ReadsASurrogatePairAsOneCharacter) {
    EXPECT_EQ(decodeList<Note>(R"([{"text":"\ud83d\ude80"}])")->front().text, "🚀");
}

TEST(RecordReader, FindsTheEndOfTextsThatLookLikeEnds) {
    const std::vector<Note> expected{{"},{"}, {"]\\"}, {"\\\"}]"}, {""}};
    EXPECT_EQ(decodeList<Note>(R"([{"text":"},{"},{"text":"]\\"} , {"text":"\\\"}]"},{"text":""}])"), expected);
}

struct Settings {
    std::map<std::string, std::string, std::less<>> texts;
    std::optional<std::map<std::string, std::vector<Point>, std::less<>>> places;

    bool operator==(const Settings&) const = default;

    static constexpr auto fields() {
        return std::tuple{field("texts", &Settings::texts), field("places", &Settings::places)};
    }
};

TEST(RecordReader, ReadsARecordThatIsTheWholeText) {
    const auto point = decodeRecord<Point>(" {\"y\":2.5,\"x\":1}\n");
    ASSERT_TRUE(point);
    EXPECT_EQ(*point, (Point{1, 2.5}));
    for (const auto* text : {"", "[]", "null", "1", R"({"x":1})", R"({"x":1,"y":2}{})", R"({"x":1,"y":2},)",
                             R"([{"x":1,"y":2}])", R"({"x":1,"y":2)"}) {
        EXPECT_FALSE(decodeRecord<Point>(text)) << text;
    }
    EXPECT_EQ(decodeRecord<Point>(R"({"x":1,"y":"2"})").error().path, ".y");
}

TEST(RecordReader, ReadsAnObjectOfAnyNamesIntoAMap) {
    const auto settings =
        decodeRecord<Settings>(R"({"texts":{"b":"2","":"","b":"3"},"places":{"a":[{"x":1,"y":2}],"c":[]}})");
    ASSERT_TRUE(settings);
    EXPECT_EQ(settings->texts, (std::map<std::string, std::string, std::less<>>{{"", ""}, {"b", "3"}}));
    ASSERT_TRUE(settings->places);
    EXPECT_EQ(settings->places->at("a"), std::vector<Point>{(Point{1, 2})});
    EXPECT_TRUE(settings->places->at("c").empty());
    EXPECT_EQ(decodeRecord<Settings>(R"({"texts":{},"places":null})")->places, std::nullopt);
}

TEST(RecordReader, MapFailsAtTheMemberThatDoesNotFit) {
    EXPECT_EQ(decodeRecord<Settings>(R"({"texts":{"a":"1","b":null}})").error().path, ".texts.b");
    EXPECT_EQ(decodeRecord<Settings>(R"({"texts":[]})").error().path, ".texts");
    EXPECT_EQ(decodeRecord<Settings>(R"({})").error().path, ".texts");
    EXPECT_EQ(decodeRecord<Settings>(R"({"texts":{},"places":{"a":[{"x":1}]}})").error().path,
              ".places.a[0].y");
}

} // namespace
} // namespace fernwick::support::testing
