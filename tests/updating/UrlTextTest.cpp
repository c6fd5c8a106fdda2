#include "updating/UrlText.h"

#include <gtest/gtest.h>

namespace fernwick {
namespace {

struct UrlRow {
    const char* name;
    const char* url;
    bool valid;
};

class Urls : public testing::TestWithParam<UrlRow> {};

TEST_P(Urls, AreValidOrNot) {
    EXPECT_EQ(isValidUrl(GetParam().url), GetParam().valid) << GetParam().url;
}

INSTANTIATE_TEST_SUITE_P(
    All, Urls,
    testing::Values(UrlRow{"Whole", "https://user:pw@maker.example:8443/a/b.zip;v=1?x=/y?&z#top", true},
                    UrlRow{"HostAlone", "https://maker.example", true},
                    UrlRow{"AddressOfSix", "http://[2001:db8::1]:80/a", true},
                    UrlRow{"PercentForm", "https://maker.example/Fern%20wick.zip", true},
                    UrlRow{"EmptyPort", "https://maker.example:/a", true},
                    UrlRow{"PathAlone", "files/F.zip", true}, UrlRow{"ColonInALaterSegment", "a/b:c", true},
                    UrlRow{"File", "file:///etc/hostname", true}, UrlRow{"Empty", "", false},
                    UrlRow{"Blank", "https://maker.example/a b", false},
                    UrlRow{"LineFeed", "https://maker.example/a\n", false},
                    UrlRow{"Quote", "https://maker.example/\"", false},
                    UrlRow{"Backslash", "https:\\\\maker.example\\a", false},
                    UrlRow{"OtherScript", "https://maker.example/t\xc3\xaan.zip", false},
                    UrlRow{"HalfAPercentForm", "https://maker.example/%4", false},
                    UrlRow{"NoPercentForm", "https://maker.example/%zz", false},
                    UrlRow{"PortIsNoNumber", "https://maker.example:http/", false},
                    UrlRow{"SchemeBeginsWithADigit", "1http://maker.example/", false},
                    UrlRow{"NoScheme", "://maker.example/", false},
                    UrlRow{"OpenBracket", "http://[::1/", false}, UrlRow{"EmptyBrackets", "http://[]/", false},
                    UrlRow{"BehindTheBrackets", "http://[::1]x/", false},
                    UrlRow{"BracketInThePath", "http://maker.example/[a]", false},
                    UrlRow{"TwoFragments", "http://maker.example/#a#b", false}),
    [](const auto& row) { return row.param.name; });

struct ComponentRow {
    const char* name;
    const char* url;
    std::string component;
    std::string archive;
};

class Components : public testing::TestWithParam<ComponentRow> {};

TEST_P(Components, AreTheLastOnesOfThePath) {
    EXPECT_EQ(lastPathComponent(GetParam().url), GetParam().component);
    EXPECT_EQ(archiveName(GetParam().url), GetParam().archive);
}

const std::string kDefault = "Fernwick_Update.zip";

INSTANTIATE_TEST_SUITE_P(
    All, Components,
    testing::Values(ComponentRow{"File", "https://maker.example/a/F.zip", "F.zip", "F.zip"},
                    ComponentRow{"Query", "https://maker.example/a/F.zip?b/c.exe", "F.zip", "F.zip"},
                    ComponentRow{"Fragment", "https://maker.example/a/F.zip#b/c", "F.zip", "F.zip"},
                    ComponentRow{"SlashesAtTheEnd", "https://maker.example/a/F.zip//", "F.zip", "F.zip"},
                    ComponentRow{"NoPath", "https://maker.example", "", kDefault},
                    ComponentRow{"NoPathButAQuery", "https://maker.example?F.zip", "", kDefault},
                    ComponentRow{"Root", "https://maker.example/", "/", kDefault},
                    ComponentRow{"Decoded", "https://maker.example/Fern%20w%C3%ADck.zip",
                                 "Fern w\xc3\xad"
                                 "ck.zip",
                                 "Fern w\xc3\xad"
                                 "ck.zip"},
                    ComponentRow{"DecodedOnce", "https://maker.example/%2541.zip", "%41.zip", "%41.zip"},
                    ComponentRow{"Dot", "https://maker.example/a/.", ".", kDefault},
                    ComponentRow{"TwoDots", "https://maker.example/a/%2e%2e/", "..", kDefault},
                    ComponentRow{"SlashInside", "https://maker.example/..%2F..%2Fx", "../../x", kDefault},
                    ComponentRow{"NulInside", "https://maker.example/a%00.zip", std::string("a\0.zip", 6),
                                 kDefault},
                    ComponentRow{"NoUtf8", "https://maker.example/%ff.zip", "\xff.zip", kDefault}),
    [](const auto& row) { return row.param.name; });

} // namespace
} // namespace fernwick
