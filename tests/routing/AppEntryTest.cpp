#include "routing/AppEntry.h"

#include "support/RecordReader.h"
#include "support/RecordWriter.h"

#include <gtest/gtest.h>

namespace fernwick {
namespace {

struct FormRow {
    std::string name, text;
    AppEntryType type;
};

class AppEntryClassified : public testing::TestWithParam<FormRow> {};

TEST_P(AppEntryClassified, ByTheFormOfItsText) {
    const auto entry = AppEntry::classified(GetParam().text);
    EXPECT_EQ(support::toRawText(entry.type), support::toRawText(GetParam().type));
    EXPECT_EQ(entry.value, GetParam().text);
    EXPECT_EQ(entry.displayName, GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, AppEntryClassified,
    testing::Values(FormRow{"Network", "192.168.1.0/24", AppEntryType::cidr},
                    FormRow{"NetworkWithTooLongAPrefix", "192.168.1.0/33", AppEntryType::app},
                    FormRow{"Range", "10.0.0.1-10.0.0.9", AppEntryType::ipRange},
                    FormRow{"HyphenBehindANumber", "7-Zip", AppEntryType::ipRange},
                    FormRow{"HyphenBehindANumeral", "万-x", AppEntryType::ipRange},
                    FormRow{"HyphenBehindALetter", "my-app", AppEntryType::app},
                    FormRow{"RangeAndNetwork", "1.2.x-y.3.4/8", AppEntryType::cidr},
                    FormRow{"HyphenInAnAddress", "1.2.3.-.4", AppEntryType::ipRange},
                    FormRow{"HyphenBeforeAnAddress", "-.1.2.3.4", AppEntryType::ip},
                    FormRow{"Address", "10.0.0.1", AppEntryType::ip},
                    FormRow{"AddressWithAPieceTooMuch", "1.2.3.x.4", AppEntryType::ip},
                    FormRow{"ShortAddress", "10.0.0", AppEntryType::app},
                    FormRow{"Number", "7", AppEntryType::app}, FormRow{"Name", "Safari", AppEntryType::app},
                    FormRow{"Empty", "", AppEntryType::app}),
    [](const auto& row) { return row.param.name; });

TEST(AppEntry, PickedApplicationIsItsBundleIdentifierUnderItsName) {
    const auto both = AppEntry::picked("Safari", "com.apple.Safari");
    EXPECT_EQ(both.type, AppEntryType::app);
    EXPECT_EQ(both.value, "com.apple.Safari");
    EXPECT_EQ(both.displayName, "Safari");
    const auto noBundle = AppEntry::picked("curl", "");
    EXPECT_EQ(noBundle.value, "curl");
    EXPECT_EQ(noBundle.displayName, "curl");
    const auto noName = AppEntry::picked("", "com.example.x");
    EXPECT_EQ(noName.value, "com.example.x");
    EXPECT_EQ(noName.displayName, "com.example.x");
}

TEST(AppEntry, EveryEntryHasAnIdOfItsOwn) {
    EXPECT_NE(AppEntry::classified("x").id, AppEntry::classified("x").id);
    EXPECT_NE(AppEntry::picked("x", "y").id, AppEntry::picked("x", "y").id);
    EXPECT_NE(AppEntry::classified("x"), AppEntry::classified("x"));
}

TEST(AppEntry, JsonHasItsFourKeys) {
    const AppEntry entry{{}, AppEntryType::ipRange, "7-Zip", "Zip"};
    const std::string json =
        R"([{"id":"00000000-0000-0000-0000-000000000000","type":"ipRange","value":"7-Zip",)"
        R"("displayName":"Zip"}])";
    EXPECT_EQ(support::encodeList(std::vector{entry}), json);
    EXPECT_EQ(support::decodeList<AppEntry>(json), std::vector{entry});
    for (const auto& [type, text] : rawTexts(AppEntryType{})) {
        auto other = json;
        other.replace(other.find("ipRange"), 7, text);
        EXPECT_EQ(support::decodeList<AppEntry>(other)->front().type, type);
    }
}

TEST(AppEntry, RawTextsAreReadExactly) {
    for (const auto* const text : {"App", "IP", "iprange", "CIDR", ""}) {
        EXPECT_FALSE(support::fromRawText<AppEntryType>(text)) << text;
    }
}

} // namespace
} // namespace fernwick
