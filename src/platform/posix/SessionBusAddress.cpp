#include "platform/posix/SessionBusAddress.h"

#include <unistd.h>

namespace fernwick::platform {

std::string sessionBusAddress(const Environment& environment) {
    if (const auto found = environment.find("DBUS_SESSION_BUS_ADDRESS");
        found != environment.end() && !found->second.empty() && !found->second.starts_with("autolaunch:")) {
        return found->second;
    }
    const auto runtime = environment.find("XDG_RUNTIME_DIR");
    if (runtime == environment.end() || !runtime->second.starts_with('/')) {
        return {};
    }
    const auto socket = runtime->second + "/bus";
    return access(socket.c_str(), F_OK) == 0 ? "unix:path=" + socket : std::string();
}

} // namespace fernwick::platform
