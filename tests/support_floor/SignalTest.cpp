#include "support/Signal.h"

#include <gmock/gmock.h>

#include <optional>
#include <string>

namespace fernwick::support {
namespace {

using ::testing::ElementsAre;

TEST(Signal, CallsItsListenersInTheOrderOfSubscription) {
    Signal<int, const std::string&> signal;
    std::vector<std::string> calls;
    const auto first =
        signal.connect([&](int n, const std::string& s) { calls.push_back("1" + s + std::to_string(n)); });
    const auto second =
        signal.connect([&](int n, const std::string& s) { calls.push_back("2" + s + std::to_string(n)); });
    signal.emit(7, "x");
    EXPECT_THAT(calls, ElementsAre("1x7", "2x7"));
}

TEST(Signal, StopsWithTheSubscription) {
    Signal<> signal;
    int calls = 0;
    auto subscription = signal.connect([&] { ++calls; });
    signal.emit();
    subscription.reset();
    subscription.reset();
    signal.emit();
    EXPECT_EQ(calls, 1);
}

TEST(Signal, AListenerAddedDuringAnEmissionIsCalledByTheNext) {
    Signal<> signal;
    int calls = 0;
    std::vector<Subscription> added;
    const auto adder = signal.connect([&] { added.push_back(signal.connect([&] { ++calls; })); });
    signal.emit();
    EXPECT_EQ(calls, 0);
    signal.emit();
    EXPECT_EQ(calls, 1);
}

TEST(Signal, AListenerRemovedDuringAnEmissionIsNotCalled) {
    Signal<> signal;
    int calls = 0;
    Subscription removed;
    const auto remover = signal.connect([&] { removed.reset(); });
    removed = signal.connect([&] { ++calls; });
    signal.emit();
    EXPECT_EQ(calls, 0);
}

TEST(Signal, AListenerMayRemoveItselfAndGoOn) {
    Signal<> signal;
    std::vector<std::string> calls;
    Subscription self;
    self = signal.connect([&, text = std::string("a capture that must outlive the removal")] {
        self.reset();
        calls.push_back(text);
    });
    signal.emit();
    signal.emit();
    EXPECT_THAT(calls, ElementsAre("a capture that must outlive the removal"));
}

TEST(Signal, AListenerMayEmitAgain) {
    Signal<int> signal;
    std::vector<int> calls;
    const auto countdown = signal.connect([&](int n) {
        calls.push_back(n);
        if (n > 0) {
            signal.emit(n - 1);
        }
    });
    signal.emit(3);
    EXPECT_THAT(calls, ElementsAre(3, 2, 1, 0));
}

TEST(Signal, AListenerMayRemoveItselfWhileItRunsTwice) {
    Signal<int> signal;
    std::vector<std::string> calls;
    Subscription self;
    self = signal.connect([&, text = std::string("a text too long to be held in place")](int depth) {
        if (depth == 0) {
            self.reset();
        } else {
            signal.emit(depth - 1);
        }
        calls.push_back(text + std::to_string(depth));
    });
    signal.emit(1);
    EXPECT_THAT(calls,
                ElementsAre("a text too long to be held in place0", "a text too long to be held in place1"));
}

TEST(Signal, ASubscriptionMayOutliveIt) {
    int calls = 0;
    std::optional<Signal<>> signal(std::in_place);
    auto subscription = signal->connect([&] { ++calls; });
    signal->emit();
    signal.reset();
    subscription.reset();
    EXPECT_EQ(calls, 1);
}

TEST(Signal, AListenerMayDestroyIt) {
    std::vector<std::string> calls;
    std::optional<Signal<>> signal(std::in_place);
    const auto first = signal->connect([&] {
        signal.reset();
        calls.emplace_back("first");
    });
    const auto second = signal->connect([&] { calls.emplace_back("second"); });
    signal->emit();
    EXPECT_THAT(calls, ElementsAre("first", "second"));
}

TEST(Signal, RemovalReleasesTheCaptures) {
    Signal<> signal;
    const auto capture = std::make_shared<int>(1);
    auto subscription = signal.connect([capture] { EXPECT_EQ(*capture, 1); });
    EXPECT_EQ(capture.use_count(), 2);
    subscription.reset();
    EXPECT_EQ(capture.use_count(), 1);
}

TEST(Subscription, MovesItsListenerAlong) {
    Signal<> signal;
    int calls = 0;
    Subscription target;
    {
        auto source = signal.connect([&] { ++calls; });
        target = std::move(source);
    }
    signal.emit();
    EXPECT_EQ(calls, 1);
}

TEST(Subscription, AssigningANewOneEndsTheOld) {
    Signal<> signal;
    std::vector<std::string> calls;
    auto subscription = signal.connect([&] { calls.emplace_back("old"); });
    subscription = signal.connect([&] { calls.emplace_back("new"); });
    signal.emit();
    EXPECT_THAT(calls, ElementsAre("new"));
}

} // namespace
} // namespace fernwick::support
