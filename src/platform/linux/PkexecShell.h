// Shell lines as root by pkexec(1). The desktop's polkit agent asks the person; where none runs, pkexec asks on
// the terminal that the application was started from, if any, and refuses otherwise.
#pragma once

#include "platform/AdministratorShell.h"
#include "platform/CommandRunner.h"

#include <string>
#include <utility>

namespace fernwick::platform {

// Runs its only argument as a line of /bin/sh. A package installs it where only root can write, with an action
// of polkit for it: the prompt then shows the line instead of "/bin/sh", and rules can be made for it alone.
inline constexpr const char* kAdministratorProgram = "/usr/libexec/fernwick-administrator";

class PkexecShell final : public AdministratorShell {
public:
    // The runner outlives the shell. `program` is what stands for `/bin/sh -c` where it is installed.
    explicit PkexecShell(CommandRunner& commands, std::string program = kAdministratorProgram)
        : commands_(commands), program_(std::move(program)) {}

    // Without a time limit, since a person answers. Exit status 126 (the prompt was dismissed) is told as
    // kAdministratorCanceled; any other failure in the words that were written to standard error.
    [[nodiscard]] std::expected<void, AdministratorError> run(const std::string& line) override;

private:
    CommandRunner& commands_;
    const std::string program_;
};

} // namespace fernwick::platform
