#include "platform/posix/TerminationSignals.h"
#include "support/FakeDispatch.h"
#include "support/WaitUntil.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace fernwick::platform {

namespace {

// Waits until the request has come to the main queue, and runs it.
bool waitForRequest(fakes::FakeDispatch& dispatch) {
    return fakes::waitUntil([&] { return dispatch.runMain() > 0; });
}

class TerminationSignal : public testing::TestWithParam<int> {};
class TerminationSignalDeathTest : public testing::TestWithParam<int> {};

bool isIgnored(int signal) {
    struct sigaction present = {};
    sigaction(signal, nullptr, &present);
    return present.sa_handler == SIG_IGN;
}

} // namespace

TEST_P(TerminationSignal, IsToldOnTheMainQueue) {
    fakes::FakeDispatch dispatch;
    int requests = 0;
    const TerminationSignals signals(dispatch, [&] { ++requests; });
    raise(GetParam());
    EXPECT_TRUE(waitForRequest(dispatch));
    EXPECT_EQ(requests, 1);
}

TEST_P(TerminationSignalDeathTest, SecondOneEndsTheProcess) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            fakes::FakeDispatch dispatch;
            const TerminationSignals signals(dispatch, [] {});
            raise(SIGTERM);
            raise(GetParam());
            std::_Exit(0);
        },
        testing::KilledBySignal(GetParam()), "");
}

INSTANTIATE_TEST_SUITE_P(Each, TerminationSignal, testing::Values(SIGTERM, SIGINT, SIGHUP));
INSTANTIATE_TEST_SUITE_P(Each, TerminationSignalDeathTest, testing::Values(SIGTERM, SIGINT, SIGHUP));

TEST(TerminationSignals, IgnoredOnesStayIgnored) {
    std::signal(SIGHUP, SIG_IGN);
    fakes::FakeDispatch dispatch;
    const TerminationSignals signals(dispatch, [] {});
    EXPECT_TRUE(isIgnored(SIGHUP));
    EXPECT_FALSE(isIgnored(SIGTERM));
}

TEST(TerminationSignals, BrokenPipesAreIgnored) {
    fakes::FakeDispatch dispatch;
    const TerminationSignals signals(dispatch, [] {});
    EXPECT_TRUE(isIgnored(SIGPIPE));
}

TEST(TerminationSignals, EndGivesTheSignalsBack) {
    std::signal(SIGINT, SIG_IGN);
    std::signal(SIGTERM, SIG_DFL);
    fakes::FakeDispatch dispatch;
    {
        const TerminationSignals signals(dispatch, [] {});
    }
    struct sigaction present = {};
    sigaction(SIGTERM, nullptr, &present);
    EXPECT_EQ(present.sa_handler, SIG_DFL);
    EXPECT_TRUE(isIgnored(SIGINT));
}

} // namespace fernwick::platform
