// Runs outside commands to their end.
#pragma once

#include "platform/CommandRunner.h"
#include "platform/posix/ChildLauncher.h"
#include "platform/posix/FileDescriptor.h"

namespace fernwick::platform {

class PosixCommandRunner final : public CommandRunner {
public:
    // The launcher outlives the runner.
    explicit PosixCommandRunner(const ChildLauncher& launcher);

    // Reads both outputs whole. What a grandchild still writes after the command's end is not waited for.
    [[nodiscard]] std::expected<CommandResult, LaunchError> run(const CommandRequest& request) override;

    // For the application's end: kills all commands that run, so that nobody waits for one that hangs, and lets
    // no further one start. Their results tell SIGKILL, or ECANCELED for those that did not start. Any thread.
    void abandonAll();

private:
    const ChildLauncher& launcher_;
    FileDescriptor abandoned_; // an eventfd that is readable once everything was abandoned
};

} // namespace fernwick::platform
