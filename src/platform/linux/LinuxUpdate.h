// The update of the application on Linux: bsdtar(1) unpacks, a script of /bin/bash swaps, and pkexec asks for
// the rights where the person may not write. Threads: any.
#pragma once

#include "platform/HostEnvironment.h"
#include "platform/UpdateSystem.h"

#include <optional>
#include <string>

namespace fernwick::platform {

// Who the new application runs as when root swaps it.
struct UpdatePerson {
    unsigned user = 0;  // numbers as the kernel has them
    unsigned group = 0; // the primary one
    Environment environment;
};

// The script. It makes the program of the target executable, which is the target itself or `Fernwick` in a
// folder; tells the desktop of changed entries; and starts the program in a session of its own. An attempt
// fails when the program cannot be executed or fails within a second. With a person the last two steps are not
// done as root, but as that person with that environment and no other (setpriv(1)); variables whose names a
// shell could not have are left out, and nothing of it can be read in a list of processes. The files are
// root's then, and everybody may read them.
[[nodiscard]] std::string linuxUpdateScript(const UpdateSwap& swap, const std::optional<UpdatePerson>& person);

class LinuxUpdate final : public UpdateSystem {
public:
    // Both outlive it. The shell asks for the rights.
    LinuxUpdate(const HostEnvironment& host, AdministratorShell& shell) : host_(host), shell_(shell) {}

    // By bsdtar, which refuses paths that lead upwards or through links and takes absolute ones as relative
    // unless it is told otherwise; owners, attributes, set-user-ID and the like are dropped, and
    // what is encrypted stays packed.
    [[nodiscard]] CommandRequest unpacking(const std::string& archive,
                                           const std::string& folder) const override;

    [[nodiscard]] std::string script(const UpdateSwap& swap) const override;

    // The log of an earlier script goes first.
    [[nodiscard]] std::expected<void, AdministratorError>
    startAsAdministrator(const std::string& scriptPath) override;

private:
    const HostEnvironment& host_;
    AdministratorShell& shell_;
};

} // namespace fernwick::platform
