// What replacing the running application takes on this system: the tool that unpacks, the script that swaps the
// application once it has quit, and the start of that script as an administrator.
// Threads: any.
#pragma once

#include "platform/AdministratorShell.h"
#include "platform/CommandRunner.h"

#include <expected>
#include <string>

namespace fernwick::platform {

// What the script is to do.
struct UpdateSwap {
    std::string target;           // the application as it lies on the disk: a folder or a file
    std::string source;           // what takes its place
    bool asAdministrator = false; // whether the script is going to run with administrator rights
};

class UpdateSystem {
public:
    virtual ~UpdateSystem() = default;

    // The command that unpacks a zip archive into a folder, and writes nowhere else whatever the archive says.
    [[nodiscard]] virtual CommandRequest unpacking(const std::string& archive,
                                                   const std::string& folder) const = 0;

    // The text of the script. Paths stand in it between double quotes and are not escaped, so one that holds a
    // double quote breaks it.
    [[nodiscard]] virtual std::string script(const UpdateSwap& swap) const = 0;

    // Asks a person for the rights and starts the script with them; it goes on after the application's end.
    // Blocks until the person has answered. An error tells the system's own words.
    [[nodiscard]] virtual std::expected<void, AdministratorError>
    startAsAdministrator(const std::string& scriptPath) = 0;
};

} // namespace fernwick::platform
