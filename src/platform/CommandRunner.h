// Outside commands that are run to their end for what they print.
// Threads: any. A run blocks until the command has ended, so the main thread is spared it where that can be.
#pragma once

#include "platform/ChildProcess.h"

#include <chrono>
#include <expected>
#include <optional>
#include <string>
#include <vector>

namespace fernwick::platform {

struct CommandRequest {
    std::string executable; // absolute path
    std::vector<std::string> arguments;
    std::optional<Environment> environment = std::nullopt;             // absent: the application's own
    std::optional<std::chrono::milliseconds> timeLimit = std::nullopt; // absent: none
};

struct CommandResult {
    int status = 0; // exit status, or the number of the signal that ended it
    std::string standardOutput;
    std::string standardError;
};

class CommandRunner {
public:
    virtual ~CommandRunner() = default;

    // Runs the command with the null device as its standard input. Fails when it cannot be executed. A command
    // that runs past its time limit is killed, and the result tells the signal; one that became another user's
    // cannot be, and is left to itself as a failure.
    [[nodiscard]] virtual std::expected<CommandResult, LaunchError> run(const CommandRequest& request) = 0;
};

} // namespace fernwick::platform
