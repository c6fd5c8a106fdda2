// A desktop without an X server; those with one, and hosts on the bus, are met by the system tests.
#include "platform/qt/QtTrayHost.h"
#include "support/FakeHostEnvironment.h"
#include "support/WaitUntil.h"

#include <QApplication>
#include <gtest/gtest.h>

namespace fernwick::platform {

namespace {

class QtTrayHostTest : public testing::TestWithParam<std::string> {
protected:
    template <class Condition>
    [[nodiscard]] static bool waitUntil(Condition condition) {
        return fakes::waitUntil([] { QCoreApplication::processEvents(); }, condition);
    }

    fakes::FakeHostEnvironment host_;
};

TEST_P(QtTrayHostTest, WithoutAnyHostItIsAbsentOnceAndNeverFromWithinTheCall) {
    qputenv("DBUS_SESSION_BUS_ADDRESS", GetParam().c_str());
    host_.environment["DBUS_SESSION_BUS_ADDRESS"] = GetParam();
    QtTrayHost tray(host_);
    int absent = 0;
    int appeared = 0;
    const auto first = tray.absent.connect([&] { ++absent; });
    const auto second = tray.appeared.connect([&] { ++appeared; });
    tray.start();
    EXPECT_EQ(absent, 0);
    EXPECT_TRUE(waitUntil([&] { return absent == 1; }));
    EXPECT_EQ(appeared, 0);
}

INSTANTIATE_TEST_SUITE_P(Buses, QtTrayHostTest,
                         testing::Values(std::string(), std::string("unix:path=/nonexistent/bus")),
                         [](const auto& row) { return row.param.empty() ? "NoBus" : "DeadBus"; });

TEST(QtTrayHost, AnEndBeforeTheAnswerIsQuiet) {
    const fakes::FakeHostEnvironment host;
    int told = 0;
    support::Subscription subscription;
    {
        QtTrayHost tray(host);
        subscription = tray.absent.connect([&] { ++told; });
        tray.start();
    }
    QCoreApplication::processEvents();
    EXPECT_EQ(told, 0);
}

} // namespace

} // namespace fernwick::platform
