// What every CloudStore does, the fake one and the one in a folder.
#pragma once

#include "platform/CloudStore.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace fernwick::platform {

// `Harness` has store(), which nobody has used, with an account; setSignedIn(bool); change(key, bytes), by
// somebody else; and waitUntil(condition).
template <class Harness>
class CloudStoreContract : public testing::Test {
protected:
    // Listens, once all that was there before has been seen.
    [[nodiscard]] support::Subscription listen() {
        auto subscription = store().changedExternally([this](const CloudChange& change) {
            for (const auto& key : change.value_or(std::vector<std::string>())) {
                told_.push_back(key);
            }
        });
        EXPECT_TRUE(store().synchronize());
        return subscription;
    }
    [[nodiscard]] bool areTold(const std::vector<std::string>& keys) {
        return harness_.waitUntil([&] { return told_ == keys; });
    }
    CloudStore& store() { return harness_.store(); }

    Harness harness_;
    std::vector<std::string> told_;
};

TYPED_TEST_SUITE_P(CloudStoreContract);

TYPED_TEST_P(CloudStoreContract, NewStoreIsEmpty) {
    EXPECT_EQ(this->store().data("key"), std::nullopt);
    EXPECT_TRUE(this->store().synchronize());
    EXPECT_EQ(this->store().data("key"), std::nullopt);
}

TYPED_TEST_P(CloudStoreContract, ValueIsThereAtOnceAndTheLastOneWins) {
    this->store().set("key", Data("first"));
    EXPECT_EQ(this->store().data("key"), Data("first"));
    this->store().set("key", Data(std::string("\0\xff", 2)));
    EXPECT_EQ(this->store().data("key"), Data(std::string("\0\xff", 2)));
    EXPECT_TRUE(this->store().synchronize());
    EXPECT_EQ(this->store().data("key"), Data(std::string("\0\xff", 2)));
    EXPECT_EQ(this->store().data("KEY"), std::nullopt);
}

TYPED_TEST_P(CloudStoreContract, AccountIsKnownOnceItWasAskedFor) {
    EXPECT_FALSE(this->store().wasSignedIn());
    EXPECT_TRUE(this->store().isSignedIn());
    EXPECT_TRUE(this->store().wasSignedIn());
    this->harness_.setSignedIn(false);
    EXPECT_TRUE(this->store().wasSignedIn());
    EXPECT_FALSE(this->store().isSignedIn());
    EXPECT_FALSE(this->store().wasSignedIn());
}

TYPED_TEST_P(CloudStoreContract, WithoutAnAccountNothingLeavesUntilThereIsOne) {
    this->harness_.setSignedIn(false);
    this->store().set("key", Data("value"));
    EXPECT_FALSE(this->store().synchronize());
    EXPECT_EQ(this->store().data("key"), Data("value"));
    this->harness_.setSignedIn(true);
    EXPECT_TRUE(this->store().synchronize());
    EXPECT_EQ(this->store().data("key"), Data("value"));
}

TYPED_TEST_P(CloudStoreContract, ChangeBySomebodyElseIsToldAndReplacesTheValue) {
    this->store().set("mine", Data("old"));
    const auto listening = this->listen();
    EXPECT_TRUE(this->told_.empty());
    this->harness_.change("mine", "new");
    EXPECT_TRUE(this->areTold({"mine"}));
    EXPECT_EQ(this->store().data("mine"), Data("new"));
    this->harness_.change("another", "value");
    EXPECT_TRUE(this->areTold({"mine", "another"}));
    EXPECT_EQ(this->store().data("another"), Data("value"));
}

TYPED_TEST_P(CloudStoreContract, EachListenerIsCalledForAsLongAsItSubscribes) {
    const auto first = this->listen();
    {
        const auto second = this->listen();
        this->harness_.change("key", "one");
        EXPECT_TRUE(this->areTold({"key", "key"}));
    }
    this->harness_.change("key", "two");
    EXPECT_TRUE(this->areTold({"key", "key", "key"}));
}

REGISTER_TYPED_TEST_SUITE_P(CloudStoreContract, NewStoreIsEmpty, ValueIsThereAtOnceAndTheLastOneWins,
                            AccountIsKnownOnceItWasAskedFor, WithoutAnAccountNothingLeavesUntilThereIsOne,
                            ChangeBySomebodyElseIsToldAndReplacesTheValue,
                            EachListenerIsCalledForAsLongAsItSubscribes);

} // namespace fernwick::platform
