// Where the session bus is. Threads: any.
#pragma once

#include "platform/ChildProcess.h"

#include <string>

namespace fernwick::platform {

// The address of the session bus (D-Bus Specification, "Well-known Message Bus Instances"): the one in
// DBUS_SESSION_BUS_ADDRESS, else the socket `bus` in XDG_RUNTIME_DIR. Empty when there is none. The libraries
// of D-Bus would start a bus when they find none, so they are not left to look themselves.
[[nodiscard]] std::string sessionBusAddress(const Environment& environment);

} // namespace fernwick::platform
