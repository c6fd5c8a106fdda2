// Starts a program that is to outlive the application.
// Threads: any.
#pragma once

#include "platform/ChildProcess.h"

#include <expected>
#include <string>
#include <vector>

namespace fernwick::platform {

struct DetachedRequest {
    std::string executable; // absolute path
    std::vector<std::string> arguments;
    std::string outputFile; // absolute path; both outputs are appended to it
};

// Returns the process id once the program runs, or why it could not be executed. The program is no child of
// ours: it runs in a session of its own (setsid(2)), with / as its folder, the application's environment, the
// null device as standard input, every signal at its default, and no other descriptor; its end leaves nothing
// to reap here.
//
// The output file is made with mode 0644. Where it is not a regular file of our own (in a shared folder
// somebody else may have put a link or a pipe there), the output goes to the null device.
[[nodiscard]] std::expected<int, LaunchError> launchDetached(const DetachedRequest& request);

} // namespace fernwick::platform
