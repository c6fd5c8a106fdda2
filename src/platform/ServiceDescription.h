// The file that describes the service to the system (launchd.plist(5), systemd.service(5)), read for a check.
// Threads: any.
#pragma once

#include "platform/FileSystem.h"
#include "platform/ServiceControl.h"

#include <expected>
#include <string>

namespace fernwick::platform {

// The text of the description, which is well-formed UTF-8 and not empty; otherwise what that says of the
// service: notInstalled, unreadable or corrupt.
[[nodiscard]] std::expected<std::string, ServiceState> readServiceDescription(FileSystem& files,
                                                                              const std::string& path);

} // namespace fernwick::platform
