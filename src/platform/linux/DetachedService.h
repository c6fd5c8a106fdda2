// The proxy engine as a process of its own, for machines where no systemd runs and the application is root,
// such as containers. The engine is no child of the application, outlives it, and is found again by its pid
// file.
#pragma once

#include "platform/FileSystem.h"
#include "platform/ServiceControl.h"
#include "platform/posix/FileDescriptor.h"

#include <chrono>

namespace fernwick::platform {

struct DetachedSettings {
    // "PID START\n": the process id, and when the process began in the clock ticks of /proc/PID/stat (proc(5)),
    // by which a process that got the same id later is told apart and spared. In a folder where only root
    // writes.
    std::string pidFile = "/run/com.fernwick.mihomo.pid";
    std::string log = kServiceLog;              // appended to
    std::chrono::milliseconds patience{10'000}; // how long an engine may take to end on SIGTERM
};

class DetachedService final : public ServiceControl {
public:
    // The file system outlives the service.
    explicit DetachedService(FileSystem& files, DetachedSettings settings = {})
        : files_(files), settings_(std::move(settings)) {}

    // Always ready: there is nothing to install.
    [[nodiscard]] ServiceCheck check(const std::string& expectedExecutable) override;

    // Writes nothing; the line does nothing and succeeds, and there is no file.
    [[nodiscard]] std::expected<PreparedInstallation, FileError>
    prepare(const ServiceProgram& program, ServiceInstallation installation) override;

    // Ends the engine that runs (SIGTERM, and SIGKILL when the patience is over), then starts
    // `executable -d folder -f configuration`. Returns once the program runs or could not be executed. An
    // engine whose pid file cannot be written is ended again, since nobody could find it later.
    void restart(const ServiceProgram& program) override;

    void terminate() override;

private:
    [[nodiscard]] FileDescriptor running();

    FileSystem& files_;
    DetachedSettings settings_;
};

} // namespace fernwick::platform
