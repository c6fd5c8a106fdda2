// What every Processes does, the fake one and the real one.
#pragma once

#include "Told.h"
#include "platform/ChildProcess.h"
#include "support/WaitUntil.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <string>
#include <vector>

namespace fernwick::platform {

// `Harness` has processes(), pump() for everything, runMain() for the main queue alone, and launches three
// programs: launchSpeaker writes a text to standard error and exits, launchSleeper lives until it is ended, and
// launchMissing is not there.
template <class Harness>
class ProcessesContract : public testing::Test {
protected:
    Processes& processes() { return harness_.processes(); }

    template <class Condition>
    [[nodiscard]] bool waitUntil(Condition condition) {
        return fakes::waitUntil([this] { harness_.pump(); }, condition);
    }

    Told told_;
    Harness harness_;
};

TYPED_TEST_SUITE_P(ProcessesContract);

TYPED_TEST_P(ProcessesContract, BeforeTheLaunchThereIsNothing) {
    const auto child = this->processes().makeChild();
    child->terminate();
    EXPECT_EQ(child->pid(), 0);
    EXPECT_FALSE(child->isRunning());
}

TYPED_TEST_P(ProcessesContract, MissingProgramFailsAndNoHandlerIsCalled) {
    const auto child = this->processes().makeChild();
    const auto launched = this->harness_.launchMissing(*child, this->told_.handlers());
    ASSERT_FALSE(launched);
    EXPECT_EQ(launched.error().code, ENOENT);
    EXPECT_EQ(launched.error().description, "No such file or directory");
    EXPECT_EQ(child->pid(), 0);
    EXPECT_FALSE(child->isRunning());
    this->harness_.pump();
    EXPECT_TRUE(this->told_.all().empty());
}

TYPED_TEST_P(ProcessesContract, EmbeddedNulIsAnInvalidArgument) {
    const std::string bad("a\0b", 3);
    for (const auto& request : {ProcessRequest{bad, {}, {}}, ProcessRequest{"/bin/true", {bad}, {}},
                                ProcessRequest{"/bin/true", {}, {{"NAME", bad}}},
                                ProcessRequest{"/bin/true", {}, {{bad, "value"}}}}) {
        const auto launched = this->processes().makeChild()->launch(request, this->told_.handlers());
        ASSERT_FALSE(launched);
        EXPECT_EQ(launched.error().code, EINVAL);
        EXPECT_EQ(launched.error().description, "Invalid argument");
    }
}

TYPED_TEST_P(ProcessesContract, StandardErrorIsToldBeforeTheOneExit) {
    const auto child = this->processes().makeChild();
    ASSERT_TRUE(this->harness_.launchSpeaker(*child, "denied\n", 255, this->told_.handlers()));
    const int pid = child->pid();
    EXPECT_GT(pid, 0);
    ASSERT_TRUE(this->waitUntil([&] { return this->told_.ended(); }));
    this->harness_.pump();
    EXPECT_EQ(this->told_.all(), (std::vector<std::string>{"E:denied\n", "X:255"}));
    EXPECT_FALSE(child->isRunning());
    EXPECT_EQ(child->pid(), pid);
}

TYPED_TEST_P(ProcessesContract, TerminateEndsTheChildWithItsSignalsNumber) {
    const auto child = this->processes().makeChild();
    ASSERT_TRUE(this->harness_.launchSleeper(*child, this->told_.handlers()));
    EXPECT_TRUE(child->isRunning());
    child->terminate();
    ASSERT_TRUE(this->waitUntil([&] { return this->told_.ended(); }));
    EXPECT_EQ(this->told_.all(), std::vector<std::string>{"X:" + std::to_string(SIGTERM)});
    child->terminate();
    EXPECT_FALSE(child->isRunning());
}

TYPED_TEST_P(ProcessesContract, SignalsReachAnyProcessId) {
    const auto child = this->processes().makeChild();
    ASSERT_TRUE(this->harness_.launchSleeper(*child, this->told_.handlers()));
    this->processes().sendSignal(child->pid(), SIGKILL);
    ASSERT_TRUE(this->waitUntil([&] { return this->told_.ended(); }));
    EXPECT_EQ(this->told_.all(), std::vector<std::string>{"X:" + std::to_string(SIGKILL)});
}

TYPED_TEST_P(ProcessesContract, SignalsToNobodyHaveNoConsequence) {
    const auto child = this->processes().makeChild();
    ASSERT_TRUE(this->harness_.launchSleeper(*child, this->told_.handlers()));
    for (const int pid : {0, -1, 0x7fffffff}) {
        this->processes().sendSignal(pid, SIGTERM);
    }
    this->harness_.pump();
    EXPECT_TRUE(child->isRunning());
    this->processes().sendSignal(child->pid(), SIGKILL);
    EXPECT_TRUE(this->waitUntil([&] { return this->told_.ended(); }));
}

TYPED_TEST_P(ProcessesContract, HandlersOutliveTheHandle) {
    auto child = this->processes().makeChild();
    ASSERT_TRUE(this->harness_.launchSpeaker(*child, "bye", 3, this->told_.handlers()));
    child.reset();
    ASSERT_TRUE(this->waitUntil([&] { return this->told_.ended(); }));
    EXPECT_EQ(this->told_.all(), (std::vector<std::string>{"E:bye", "X:3"}));
}

TYPED_TEST_P(ProcessesContract, ChildrenAreToldApart) {
    Told other;
    const auto one = this->processes().makeChild();
    const auto two = this->processes().makeChild();
    ASSERT_TRUE(this->harness_.launchSpeaker(*one, "one", 1, this->told_.handlers()));
    ASSERT_TRUE(this->harness_.launchSpeaker(*two, "two", 2, other.handlers()));
    EXPECT_NE(one->pid(), two->pid());
    ASSERT_TRUE(this->waitUntil([&] { return this->told_.ended() && other.ended(); }));
    EXPECT_EQ(this->told_.all().back(), "X:1");
    EXPECT_EQ(other.all().back(), "X:2");
}

TYPED_TEST_P(ProcessesContract, OnePieceOfStandardErrorIsOnItsWayAtATime) {
    const auto child = this->processes().makeChild();
    ASSERT_TRUE(this->harness_.launchSpeaker(*child, std::string(200'000, 'x'), 0, this->told_.handlers()));
    ASSERT_TRUE(this->harness_.waitWithoutMain([&] { return !this->told_.all().empty(); }));
    EXPECT_TRUE(fakes::staysTrue([&] { return this->told_.all().size() == 1; }));
    ASSERT_TRUE(this->waitUntil([&] { return this->told_.ended(); }));
    std::size_t bytes = 0;
    for (const auto& piece : this->told_.all()) {
        bytes += piece.starts_with("E:") ? piece.size() - 2 : 0;
    }
    EXPECT_EQ(bytes, 200'000U);
}

REGISTER_TYPED_TEST_SUITE_P(ProcessesContract, BeforeTheLaunchThereIsNothing,
                            MissingProgramFailsAndNoHandlerIsCalled, EmbeddedNulIsAnInvalidArgument,
                            StandardErrorIsToldBeforeTheOneExit, TerminateEndsTheChildWithItsSignalsNumber,
                            SignalsReachAnyProcessId, SignalsToNobodyHaveNoConsequence,
                            HandlersOutliveTheHandle, ChildrenAreToldApart,
                            OnePieceOfStandardErrorIsOnItsWayAtATime);

} // namespace fernwick::platform
