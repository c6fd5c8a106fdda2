#include "platform/posix/SessionBusAddress.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace fernwick::platform {

TEST(SessionBusAddress, IsTheOneOfTheEnvironment) {
    EXPECT_EQ(sessionBusAddress({{"DBUS_SESSION_BUS_ADDRESS", "unix:path=/a"}, {"XDG_RUNTIME_DIR", "/tmp"}}),
              "unix:path=/a");
}

TEST(SessionBusAddress, IsElseTheSocketInTheRuntimeFolder) {
    const fakes::TemporaryFolder folder;
    const Environment environment{{"XDG_RUNTIME_DIR", folder.path()}};
    EXPECT_EQ(sessionBusAddress(environment), "");
    folder.write("bus", "");
    EXPECT_EQ(sessionBusAddress(environment), "unix:path=" + (folder / "bus"));
}

TEST(SessionBusAddress, IsNeverOneThatStartsABus) {
    EXPECT_EQ(sessionBusAddress({}), "");
    EXPECT_EQ(sessionBusAddress({{"DBUS_SESSION_BUS_ADDRESS", ""}}), "");
    EXPECT_EQ(sessionBusAddress({{"DBUS_SESSION_BUS_ADDRESS", "autolaunch:"}}), "");
    EXPECT_EQ(sessionBusAddress({{"XDG_RUNTIME_DIR", "relative"}}), "");
}

} // namespace fernwick::platform
