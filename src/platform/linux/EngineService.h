// Which way the proxy engine runs as a service on this machine.
// Threads: any.
#pragma once

#include "platform/CommandRunner.h"
#include "platform/HostEnvironment.h"
#include "platform/ServiceControl.h"

#include <memory>

namespace fernwick::platform {

enum class EngineServiceKind {
    systemd, // a unit of systemd
    detached // a process of its own, with a pid file
};

// Systemd wherever it runs. Without it, as in a container, root can start the engine itself. Without both there
// is nobody to run the engine as root, and systemd's installation is what tells the person so.
[[nodiscard]] EngineServiceKind chooseEngineService(bool systemdRuns, bool root);

// The service for the machine and the account that the application runs as, by sd_booted(3) and geteuid(2). All
// outlive the service.
[[nodiscard]] std::unique_ptr<ServiceControl> makeEngineService(FileSystem& files, CommandRunner& commands,
                                                                const HostEnvironment& host);

} // namespace fernwick::platform
