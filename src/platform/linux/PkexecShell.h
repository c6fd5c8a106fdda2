// Shell lines as root by pkexec(1). The desktop's polkit agent asks the person; where none runs, pkexec asks on
// the terminal that the application was started from, if any, and refuses otherwise.
#pragma once

#include "platform/AdministratorShell.h"
#include "platform/CommandRunner.h"

namespace fernwick::platform {

class PkexecShell final : public AdministratorShell {
public:
    // The runner outlives the shell.
    explicit PkexecShell(CommandRunner& commands) : commands_(commands) {}

    // Without a time limit, since a person answers. Exit status 126 (the prompt was dismissed) is told as
    // kAdministratorCanceled; any other failure in the words that were written to standard error.
    [[nodiscard]] std::expected<void, AdministratorError> run(const std::string& line) override;

private:
    CommandRunner& commands_;
};

} // namespace fernwick::platform
