#include "support/JsonTexts.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace fernwick::support {
namespace {

using Members = std::vector<std::pair<std::string, std::string>>;

// What was called, whether or not it was an object of texts.
Members membersOf(std::string_view json, bool expected = true) {
    Members members;
    EXPECT_EQ(readJsonTexts(json, [&](auto name, auto text) { members.emplace_back(name, text); }), expected);
    return members;
}

TEST(JsonTexts, MembersComeInTheirOrder) {
    EXPECT_EQ(membersOf(R"({"b":"1","a":"2","b":""})"), Members({{"b", "1"}, {"a", "2"}, {"b", ""}}));
    EXPECT_EQ(membersOf(" { } "), Members());
}

TEST(JsonTexts, EscapesAreRead) {
    EXPECT_EQ(membersOf(R"({"\u0061":"\/\n\u00e9\ud83d\ude00"})"), Members({{"a", "/\né😀"}}));
}

TEST(JsonTexts, WithAnyOtherValueThereIsNoMember) {
    for (const auto* value : {"1", "null", "true", "[]", "{}", "[\"a\"]", "-1.5e300"}) {
        const auto json = R"({"first":"a","second":)" + std::string(value) + "}";
        EXPECT_EQ(membersOf(json, false), Members()) << json;
    }
}

TEST(JsonTexts, WhatIsNoObjectHasNoMember) {
    for (const std::string_view json :
         {"", " ", "[]", "\"a\"", "7", "{", R"({"a":"b")", R"({"a":"b"}})", R"({"a":"b",})", R"({'a':'b'})",
          R"({"a" "b"})", "{\"a\":\"\n\"}", R"({"a":"\ud800"})", "{\"a\":\"\xff\"}"}) {
        EXPECT_EQ(membersOf(json, false), Members()) << json;
    }
}

TEST(JsonTexts, ATextOfMegabytesIsRead) {
    const std::string text(20'000'000, 'x');
    EXPECT_EQ(membersOf("{\"a\":\"" + text + "\"}"), Members({{"a", text}}));
}

} // namespace
} // namespace fernwick::support
