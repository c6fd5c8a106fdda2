// The update of the application on macOS, as texts. Threads: any.
#pragma once

#include "platform/CommandRunner.h"

#include <string>
#include <string_view>

namespace fernwick::platform {

// The command that unpacks a zip archive into a folder (ditto(1)).
[[nodiscard]] CommandRequest macUnpacking(const std::string& archive, const std::string& folder);

// The script for /bin/bash that waits until no process is called Fernwick, and then puts the source in the
// place of the target, clears its quarantine, registers it with LaunchServices and opens it. Paths stand in
// double quotes and are not escaped.
[[nodiscard]] std::string macUpdateScript(std::string_view target, std::string_view source);

// The source for NSAppleScript that asks for administrator rights and starts the script with them.
[[nodiscard]] std::string macUpdateAppleScript(std::string_view scriptPath);

} // namespace fernwick::platform
