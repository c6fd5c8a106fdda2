// The proxy engine as a unit of systemd, with a polkit rule beside it that lets the one user who installed both
// start and stop it without a prompt.
//
// What guards the installation: the temporary file lies in the application's support folder, since in a shared
// /tmp other users could put a file or link of theirs in its place before root copies it. In its folder only
// the user writes, who decides anyway what the service runs. The rule grants rights, so its text travels in the
// shell line itself. Root looks at nothing else. The log lies in /tmp, where the kernel keeps root from
// following other users' links (fs.protected_symlinks, proc(5)).
#pragma once

#include "platform/CommandRunner.h"
#include "platform/HostEnvironment.h"
#include "platform/ServiceControl.h"

namespace fernwick::platform {

// The line that installs the unit that stands in a temporary file, and the rule for the user; the same for a
// first installation and another one. It fails before it changes anything where systemd does not run. Unit and
// rule are replaced whole, the unit last: what is half installed is not taken for ready.
[[nodiscard]] std::string systemdInstallLine(const std::string& temporaryFile, const std::string& user);

class SystemdService final : public ServiceControl {
public:
    // `user` is the account that the service is installed for, as accountName tells it. The others outlive the
    // service.
    SystemdService(FileSystem& files, CommandRunner& commands, const HostEnvironment& host, std::string user)
        : files_(files), commands_(commands), host_(host), user_(std::move(user)) {}

    // A unit that is installed for another user counts as one with another path, since only that user may start
    // it; the old path then tells the user too: "/usr/bin/mihomo (anna)".
    [[nodiscard]] ServiceCheck check(const std::string& expectedExecutable) override;

    // The temporary file is "fernwick-mihomo.service" in the support folder, which is made if need be.
    [[nodiscard]] std::expected<PreparedInstallation, FileError>
    prepare(const ServiceProgram& program, ServiceInstallation installation) override;

    // Both never ask for a password, neither on a terminal nor by the desktop: the only prompt is that of the
    // installation. Where the rule is missing, systemd refuses and nothing happens.
    void restart(const ServiceProgram& program) override;
    void terminate() override;

private:
    FileSystem& files_;
    CommandRunner& commands_;
    const HostEnvironment& host_;
    std::string user_;
};

} // namespace fernwick::platform
