// What the preferences do, the fake ones and those in files.
#pragma once

#include "platform/UserDefaults.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <memory>
#include <string>
#include <vector>

namespace fernwick::platform {

// `Harness` has open(domain), read(domain), makeUnreadable(domain), and setFailing(bool), which makes writing
// impossible.
template <class Harness>
class UserDefaultsContract : public testing::Test {
protected:
    std::unique_ptr<UserDefaults> open() { return harness_.open("com.example.Contract"); }

    Harness harness_;
};

TYPED_TEST_SUITE_P(UserDefaultsContract);

inline PropertyDictionary everyKindOfValue() {
    using namespace std::string_literals;
    return {
        {"bool true", {true}},
        {"bool false", {false}},
        {"zero", {std::int64_t{0}}},
        {"negative", {std::int64_t{-5}}},
        {"smallest", {std::numeric_limits<std::int64_t>::min()}},
        {"largest", {std::numeric_limits<std::int64_t>::max()}},
        {"real", {3.25}},
        {"text", {"plain"s}},
        {"empty text", {""s}},
        {"unicode text", {"Kết nối \U0001F511"s}},
        {"bytes", {Data("\0\x01\xff"s)}},
        {"no bytes", {Data()}},
        {"date", {support::Date{700000000.5}}},
        {"early date", {support::Date{-1.25}}},
        {"array", {PropertyArray{{std::int64_t{1}}, {"two"s}, {PropertyArray{}}}}},
        {"dictionary", {PropertyDictionary{{"inner", {PropertyDictionary{{"innermost", {false}}}}}}}},
    };
}

TYPED_TEST_P(UserDefaultsContract, NewDomainIsEmpty) {
    const auto defaults = this->open();
    EXPECT_TRUE(defaults->keys().empty());
    EXPECT_EQ(defaults->value("anything"), std::nullopt);
    defaults->remove("anything");
    EXPECT_TRUE(defaults->keys().empty());
}

TYPED_TEST_P(UserDefaultsContract, ValuesAreThereAtOnceAndKeysAreSorted) {
    const auto defaults = this->open();
    defaults->set("b", {std::int64_t{2}});
    defaults->set("a", {true});
    defaults->set("b", {std::int64_t{3}});
    EXPECT_EQ(defaults->keys(), (std::vector<std::string>{"a", "b"}));
    EXPECT_EQ(defaults->value("b"), PropertyValue{std::int64_t{3}});
    defaults->remove("a");
    EXPECT_EQ(defaults->keys(), std::vector<std::string>{"b"});
}

TYPED_TEST_P(UserDefaultsContract, DataIsAbsentForOtherTypes) {
    const auto defaults = this->open();
    defaults->set("text", {std::string("text")});
    defaults->set("bytes", {Data("bytes")});
    EXPECT_EQ(defaults->data("text"), std::nullopt);
    EXPECT_EQ(defaults->data("nothing"), std::nullopt);
    EXPECT_EQ(defaults->data("bytes"), Data("bytes"));
}

TYPED_TEST_P(UserDefaultsContract, EveryKindOfValueSurvivesTheApplication) {
    const auto values = everyKindOfValue();
    {
        const auto defaults = this->open();
        for (const auto& [key, value] : values) {
            defaults->set(key, value);
        }
    }
    const auto defaults = this->open();
    EXPECT_EQ(defaults->keys().size(), values.size());
    for (const auto& [key, value] : values) {
        EXPECT_EQ(defaults->value(key), value) << key;
    }
}

TYPED_TEST_P(UserDefaultsContract, SynchronizedValuesAreThereForTheNextStart) {
    const auto running = this->open();
    running->set("kept", {true});
    running->set("dropped", {true});
    running->remove("dropped");
    running->synchronize();
    EXPECT_EQ(this->open()->keys(), std::vector<std::string>{"kept"});
}

TYPED_TEST_P(UserDefaultsContract, DomainsAreApart) {
    this->open()->set("key", {true});
    EXPECT_TRUE(this->harness_.open("com.example.Other")->keys().empty());
}

TYPED_TEST_P(UserDefaultsContract, DomainOfAnotherIsReadWhole) {
    const auto values = everyKindOfValue();
    {
        const auto theirs = this->open();
        for (const auto& [key, value] : values) {
            theirs->set(key, value);
        }
    }
    EXPECT_EQ(this->harness_.read("com.example.Contract"), values);
}

TYPED_TEST_P(UserDefaultsContract, MissingDomainOfAnotherIsEmptyAndAnUnreadableOneAbsent) {
    EXPECT_EQ(this->harness_.read("com.example.Contract"), PropertyDictionary());
    this->harness_.makeUnreadable("com.example.Contract");
    EXPECT_EQ(this->harness_.read("com.example.Contract"), std::nullopt);
}

TYPED_TEST_P(UserDefaultsContract, FailedWriteKeepsMemoryAndIsMadeUpForByTheNextChange) {
    const auto defaults = this->open();
    defaults->set("first", {true});
    defaults->synchronize();
    this->harness_.setFailing(true);
    defaults->set("second", {true});
    defaults->synchronize();
    EXPECT_EQ(defaults->value("second"), PropertyValue{true});
    EXPECT_EQ(this->open()->keys(), std::vector<std::string>{"first"});
    this->harness_.setFailing(false);
    defaults->set("third", {true});
    defaults->synchronize();
    EXPECT_EQ(this->open()->keys(), (std::vector<std::string>{"first", "second", "third"}));
}

REGISTER_TYPED_TEST_SUITE_P(UserDefaultsContract, NewDomainIsEmpty, ValuesAreThereAtOnceAndKeysAreSorted,
                            DataIsAbsentForOtherTypes, EveryKindOfValueSurvivesTheApplication,
                            SynchronizedValuesAreThereForTheNextStart, DomainsAreApart,
                            DomainOfAnotherIsReadWhole, MissingDomainOfAnotherIsEmptyAndAnUnreadableOneAbsent,
                            FailedWriteKeepsMemoryAndIsMadeUpForByTheNextChange);

} // namespace fernwick::platform
