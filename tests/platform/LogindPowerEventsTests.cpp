#include "PowerEventsContract.h"
#include "PrivateBus.h"
#include "QtHarness.h"
#include "platform/qt/LogindPowerEvents.h"
#include "support/FakeHostEnvironment.h"

#include <memory>

namespace fernwick::platform {

namespace {

// A system bus of a test's own, with python-dbusmock's logind on it.
class LogindHarness {
public:
    LogindHarness() {
        host_.environment["DBUS_SYSTEM_BUS_ADDRESS"] = bus_.address();
        startLogind();
    }

    PowerEvents& events() {
        if (!events_) {
            events_ = std::make_unique<LogindPowerEvents>(qt_.dispatch(), host_);
        }
        return *events_;
    }
    Dispatch& dispatch() { return qt_.dispatch(); }
    void useBus(const std::string& address) { host_.environment["DBUS_SYSTEM_BUS_ADDRESS"] = address; }

    void startLogind() {
        const Environment environment{{"PATH", "/usr/bin:/bin"}, {"DBUS_SYSTEM_BUS_ADDRESS", bus_.address()}};
        logind_ = std::make_unique<TestProgram>(
            "/usr/bin/python3", std::vector<std::string>{"-m", "dbusmock", "--system", "--template", "logind"},
            &environment);
        if (!fakes::waitUntil([this] { return !inhibitors().empty(); })) {
            throw std::runtime_error("the mock of logind does not come up");
        }
    }
    void endLogind() {
        logind_.reset();
        EXPECT_TRUE(fakes::waitUntil([this] { return !bus_.hasOwner("org.freedesktop.login1"); }));
    }

    // Each lets the machine do so when the application listens.
    void sleep() { tell("true"); }
    void wake() { tell("false"); }

    [[nodiscard]] bool isHeld() { return inhibitors().contains("'sleep', 'Fernwick'"); }

    template <class Condition>
    [[nodiscard]] bool waitUntil(Condition condition) {
        return qt_.waitUntil(condition);
    }

private:
    [[nodiscard]] std::string manager(const std::string& method,
                                      const std::vector<std::string>& arguments = {}) {
        return bus_.call("org.freedesktop.login1", "/org/freedesktop/login1", method, arguments);
    }
    [[nodiscard]] std::string inhibitors() { return manager("org.freedesktop.login1.Manager.ListInhibitors"); }

    void tell(const std::string& asleep) {
        // It listens since before it asked for its first inhibitor.
        listening_ = listening_ || waitUntil([this] { return isHeld(); });
        EXPECT_NE(manager("org.freedesktop.DBus.Mock.EmitSignal",
                          {"org.freedesktop.login1.Manager", "PrepareForSleep", "b", "[<" + asleep + ">]"}),
                  "");
    }

    QtHarness qt_;
    PrivateBus bus_;
    fakes::FakeHostEnvironment host_;
    std::unique_ptr<TestProgram> logind_;
    std::unique_ptr<LogindPowerEvents> events_;
    bool listening_ = false;
};

class LogindPowerEventsTest : public testing::Test {
protected:
    void start() {
        sleeping_ = events().willSleep.connect([this] { ++sleeps_; });
        waking_ = events().didWake.connect([this] { ++wakes_; });
        events().start();
    }
    PowerEvents& events() { return harness_.events(); }
    [[nodiscard]] bool becomesHeld(bool held) {
        return harness_.waitUntil([&] { return harness_.isHeld() == held; });
    }

    LogindHarness harness_;
    int sleeps_ = 0;
    int wakes_ = 0;
    support::Subscription sleeping_;
    support::Subscription waking_;
};

} // namespace

INSTANTIATE_TYPED_TEST_SUITE_P(Logind, PowerEventsContract, LogindHarness);

TEST_F(LogindPowerEventsTest, InhibitorIsHeldFromTheStartAndBetweenSleeps) {
    EXPECT_FALSE(harness_.isHeld());
    start();
    for (int cycle = 1; cycle <= 3; ++cycle) {
        EXPECT_TRUE(becomesHeld(true));
        harness_.sleep();
        EXPECT_TRUE(becomesHeld(false));
        EXPECT_EQ(sleeps_, cycle);
        harness_.wake();
        EXPECT_TRUE(becomesHeld(true));
        EXPECT_EQ(wakes_, cycle);
    }
}

TEST_F(LogindPowerEventsTest, SleepIsHeldBackUntilQueuedWorkHasRun) {
    std::optional<bool> heldDuringHandler;
    std::optional<bool> heldDuringWork;
    const auto subscription = events().willSleep.connect([&] {
        heldDuringHandler = harness_.isHeld();
        harness_.dispatch().main([&] {
            heldDuringWork = harness_.isHeld();
            harness_.dispatch().main([] {});
        });
    });
    start();
    harness_.sleep();
    EXPECT_TRUE(becomesHeld(false));
    EXPECT_EQ(heldDuringHandler, true);
    EXPECT_EQ(heldDuringWork, true);
}

TEST_F(LogindPowerEventsTest, WakeRightAfterASleepLeavesAnInhibitor) {
    start();
    ASSERT_TRUE(becomesHeld(true));
    harness_.sleep();
    harness_.wake();
    EXPECT_TRUE(harness_.waitUntil([&] { return wakes_ == 1; }));
    bool asked = false;
    harness_.dispatch().mainAfter(Duration(100), [&] { asked = true; });
    EXPECT_TRUE(harness_.waitUntil([&] { return asked; }));
    EXPECT_TRUE(becomesHeld(true));
}

TEST_F(LogindPowerEventsTest, StartDoesNothingBeforeTheMainQueueGetsToIt) {
    start();
    EXPECT_TRUE(fakes::staysTrue([&] { return !harness_.isHeld(); }));
    EXPECT_TRUE(becomesHeld(true));
}

TEST_F(LogindPowerEventsTest, LogindThatComesLateIsFound) {
    harness_.endLogind();
    start();
    for (int turn = 0; turn < 10; ++turn) {
        QCoreApplication::processEvents();
    }
    harness_.startLogind();
    EXPECT_TRUE(becomesHeld(true));
    harness_.sleep();
    EXPECT_TRUE(harness_.waitUntil([&] { return sleeps_ == 1; }));
}

TEST_F(LogindPowerEventsTest, LogindThatStartsAnewIsFound) {
    start();
    EXPECT_TRUE(becomesHeld(true));
    harness_.endLogind();
    harness_.startLogind();
    EXPECT_TRUE(becomesHeld(true));
    harness_.sleep();
    EXPECT_TRUE(becomesHeld(false));
    EXPECT_EQ(sleeps_, 1);
}

TEST_F(LogindPowerEventsTest, WithoutASystemBusNothingIsTold) {
    harness_.useBus("unix:path=/nonexistent/bus");
    testing::internal::CaptureStderr();
    start();
    bool passed = false;
    harness_.dispatch().main([&] { passed = true; });
    EXPECT_TRUE(harness_.waitUntil([&] { return passed; }));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_FALSE(harness_.isHeld());
}

TEST(LogindPowerEvents, EndBeforeTheQueuedStartIsHarmless) {
    LogindHarness harness;
    fakes::FakeHostEnvironment host;
    std::make_unique<LogindPowerEvents>(harness.dispatch(), host)->start();
    bool passed = false;
    harness.dispatch().main([&] { passed = true; });
    EXPECT_TRUE(harness.waitUntil([&] { return passed; }));
}

} // namespace fernwick::platform
