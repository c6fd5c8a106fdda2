#include "support/NotificationCenter.h"

#include <gmock/gmock.h>

namespace fernwick::support {
namespace {

using ::testing::ElementsAre;

TEST(NotificationCenter, CallsTheObserversOfThatNameInOrder) {
    NotificationCenter center;
    std::vector<std::string> calls;
    const auto first = center.observe("changed", [&] { calls.emplace_back("first"); });
    const auto second = center.observe("changed", [&] { calls.emplace_back("second"); });
    const auto other = center.observe("other", [&] { calls.emplace_back("other"); });
    center.post("changed");
    EXPECT_THAT(calls, ElementsAre("first", "second"));
}

TEST(NotificationCenter, PostsToNobodyWithoutEffect) {
    NotificationCenter center;
    int calls = 0;
    const auto observer = center.observe("changed", [&] { ++calls; });
    center.post("Changed");
    center.post("");
    EXPECT_EQ(calls, 0);
}

TEST(NotificationCenter, CallsNobodyWhoseSubscriptionIsGone) {
    NotificationCenter center;
    int calls = 0;
    {
        const auto observer = center.observe("changed", [&] { ++calls; });
        center.post("changed");
    }
    center.post("changed");
    EXPECT_EQ(calls, 1);
}

TEST(NotificationCenter, AnObserverMayPostAndObserve) {
    NotificationCenter center;
    std::vector<std::string> calls;
    Subscription late;
    const auto inner = center.observe("inner", [&] { calls.emplace_back("inner"); });
    const auto outer = center.observe("outer", [&] {
        center.post("inner");
        late = center.observe("late", [&] { calls.emplace_back("late"); });
    });
    center.post("outer");
    center.post("late");
    EXPECT_THAT(calls, ElementsAre("inner", "late"));
}

} // namespace
} // namespace fernwick::support
