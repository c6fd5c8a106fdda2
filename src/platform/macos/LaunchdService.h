// The proxy engine as a daemon of launchd (launchd.plist(5), launchctl(1)). Its texts and decisions are plain
// C++ over files and commands, and so hold on every system.
#pragma once

#include "platform/CommandRunner.h"
#include "platform/HostEnvironment.h"
#include "platform/ServiceControl.h"

namespace fernwick::platform {

// Where the daemon's description is installed.
inline constexpr const char* kLaunchdPlist = "/Library/LaunchDaemons/com.fernwick.mihomo.plist";

// The description of the daemon. The paths are inserted as they are: one with a '<' or '&' in it makes a text
// that launchd refuses.
[[nodiscard]] std::string launchdPlist(const ServiceProgram& program);

// The line that installs the description that stands in a temporary file.
[[nodiscard]] std::string launchdInstallLine(const std::string& temporaryFile,
                                             ServiceInstallation installation);

class LaunchdService final : public ServiceControl {
public:
    // All outlive the service.
    LaunchdService(FileSystem& files, CommandRunner& commands, const HostEnvironment& host)
        : files_(files), commands_(commands), host_(host) {}

    // The texts are searched for the path, not parsed: a path that is contained in another one passes for it.
    [[nodiscard]] ServiceCheck check(const std::string& expectedExecutable) override;

    // The temporary file is "fernwick-mihomo.plist" in the folder for temporary files, which is the user's own
    // on macOS.
    [[nodiscard]] std::expected<PreparedInstallation, FileError>
    prepare(const ServiceProgram& program, ServiceInstallation installation) override;

    void restart(const ServiceProgram& program) override;
    void terminate() override;

private:
    FileSystem& files_;
    CommandRunner& commands_;
    const HostEnvironment& host_;
};

} // namespace fernwick::platform
