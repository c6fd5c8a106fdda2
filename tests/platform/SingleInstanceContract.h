// What every SingleInstance does, the fake one and the one on a session bus.
#pragma once

#include "platform/SingleInstance.h"

#include <gtest/gtest.h>

#include <memory>

namespace fernwick::platform {

// `Harness` has make(), an instance of the one user session, claimElsewhere(start), which is another start,
// wanted to be seen unless said otherwise, that claims and ends, and pump(), in which requests arrive.
template <class Harness>
class SingleInstanceContract : public testing::Test {
protected:
    using Claim = SingleInstance::Claim;

    Harness harness_;
};

TYPED_TEST_SUITE_P(SingleInstanceContract);

TYPED_TEST_P(SingleInstanceContract, FirstStartIsTheApplication) {
    const auto first = this->harness_.make();
    EXPECT_EQ(first->claim(SingleInstance::Start::shown), SingleInstance::Claim::first);
    EXPECT_EQ(first->claim(SingleInstance::Start::shown), SingleInstance::Claim::first);
}

TYPED_TEST_P(SingleInstanceContract, SecondStartRaisesTheFirst) {
    const auto first = this->harness_.make();
    ASSERT_EQ(first->claim(SingleInstance::Start::shown), SingleInstance::Claim::first);
    int reopened = 0;
    const auto subscription = first->reopened.connect([&] { ++reopened; });
    EXPECT_EQ(this->harness_.claimElsewhere(), SingleInstance::Claim::second);
    EXPECT_EQ(reopened, 1);
    EXPECT_EQ(this->harness_.claimElsewhere(), SingleInstance::Claim::second);
    EXPECT_EQ(reopened, 2);
}

TYPED_TEST_P(SingleInstanceContract, HiddenSecondStartDisturbsNobody) {
    const auto first = this->harness_.make();
    ASSERT_EQ(first->claim(SingleInstance::Start::hidden), SingleInstance::Claim::first);
    int reopened = 0;
    const auto subscription = first->reopened.connect([&] { ++reopened; });
    EXPECT_EQ(this->harness_.claimElsewhere(SingleInstance::Start::hidden), SingleInstance::Claim::second);
    EXPECT_EQ(reopened, 0);
    EXPECT_EQ(this->harness_.claimElsewhere(), SingleInstance::Claim::second);
    EXPECT_EQ(reopened, 1);
}

TYPED_TEST_P(SingleInstanceContract, StartAfterTheEndIsTheApplication) {
    auto first = this->harness_.make();
    ASSERT_EQ(first->claim(SingleInstance::Start::shown), SingleInstance::Claim::first);
    first.reset();
    EXPECT_EQ(this->harness_.claimElsewhere(), SingleInstance::Claim::first);
    EXPECT_EQ(this->harness_.claimElsewhere(), SingleInstance::Claim::first);
}

REGISTER_TYPED_TEST_SUITE_P(SingleInstanceContract, FirstStartIsTheApplication, SecondStartRaisesTheFirst,
                            HiddenSecondStartDisturbsNobody, StartAfterTheEndIsTheApplication);

} // namespace fernwick::platform
