#include "platform/linux/EngineService.h"

#include "platform/linux/DetachedService.h"
#include "platform/linux/SystemdService.h"
#include "platform/posix/AccountName.h"

#include <unistd.h>

namespace fernwick::platform {

EngineServiceKind chooseEngineService(bool systemdRuns, bool root) {
    return !systemdRuns && root ? EngineServiceKind::detached : EngineServiceKind::systemd;
}

std::unique_ptr<ServiceControl> makeEngineService(FileSystem& files, CommandRunner& commands,
                                                  const HostEnvironment& host) {
    const bool systemdRuns = files.exists("/run/systemd/system");
    if (chooseEngineService(systemdRuns, geteuid() == 0) == EngineServiceKind::detached) {
        return std::make_unique<DetachedService>(files);
    }
    return std::make_unique<SystemdService>(files, commands, host, accountName());
}

} // namespace fernwick::platform
