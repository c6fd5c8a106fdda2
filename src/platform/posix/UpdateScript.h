// The script that swaps the application, with the steps that each system does in its own way.
// Threads: any.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace fernwick::platform {

struct UpdateScriptParts {
    std::string_view target;
    std::string_view source;
    std::vector<std::string> preparing;   // lines that make the copy ready to be started
    std::vector<std::string> registering; // lines that tell the desktop of it
    std::vector<std::string> definitions; // lines between the pause and the loop; with an empty one behind them
    std::string opening;                  // the command that opens it, and fails where that cannot be done
};

// The script for /bin/bash. Its lines are joined by line feeds, and none follows the last one. It waits for as
// long as a process called Fernwick lives, and checks nothing: what it prints goes to a log in /tmp. The paths
// are put in as they are.
[[nodiscard]] std::string updateScript(const UpdateScriptParts& parts);

} // namespace fernwick::platform
