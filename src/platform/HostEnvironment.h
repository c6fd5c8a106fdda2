// What the application was given by the one who started it: variables and folders.
// Threads: any; nothing changes after the start.
#pragma once

#include "platform/ChildProcess.h"

#include <optional>
#include <string>

namespace fernwick::platform {

class HostEnvironment {
public:
    virtual ~HostEnvironment() = default;

    // A copy of the application's environment.
    [[nodiscard]] virtual Environment variables() const = 0;

    // The user's home folder as the system's account database has it, whatever HOME says. Never empty.
    [[nodiscard]] virtual std::string accountHome() const = 0;

    // The home folder that programs go by: HOME, or the account's where that is missing or empty.
    [[nodiscard]] std::string homeFolder() const {
        const auto environment = variables();
        const auto home = environment.find("HOME");
        return home != environment.end() && !home->second.empty() ? home->second : accountHome();
    }

    // Where preference files lie: $XDG_CONFIG_HOME, else ~/.config (XDG Base Directory Specification).
    [[nodiscard]] virtual std::string configFolder() const = 0;

    // The application's support folder: $XDG_DATA_HOME/Fernwick, else ~/.local/share/Fernwick.
    [[nodiscard]] virtual std::string supportFolder() const = 0;

    // A folder of the application's own in which the name "default" leads to the socket of the ssh agent that
    // the application was started with (SSH_AUTH_SOCK). Nothing when there is no agent or the folder cannot be
    // made.
    [[nodiscard]] virtual std::optional<std::string> agentFolder() const = 0;

    // $TMPDIR, else the system's folder for temporary files.
    [[nodiscard]] virtual std::string temporaryFolder() const = 0;
};

} // namespace fernwick::platform
