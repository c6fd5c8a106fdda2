// The proxy engine as a service of the system that runs as root (launchd daemon, systemd unit).
// Threads: any, unless an operation says otherwise; one at a time.
#pragma once

#include "platform/FileSystem.h"

#include <expected>
#include <string>

namespace fernwick::platform {

// What the service runs; absolute paths.
struct ServiceProgram {
    std::string executable;
    std::string folder;        // where it keeps its files
    std::string configuration; // the file that it reads at its start
};

enum class ServiceState {
    ready,        // installed for this executable, as root
    notInstalled, // no description of the service on this machine
    missingRoot,  // installed for this executable, but not as root
    corrupt,      // the description cannot be read though it may be, is empty, or is no UTF-8 text
    unreadable,   // the description may not be read
    pathChanged   // installed for another executable
};

struct ServiceCheck {
    ServiceState state = ServiceState::notInstalled;
    std::string oldPath = {}; // with `pathChanged`: the other executable, "unknown" if it cannot be told

    bool operator==(const ServiceCheck&) const = default;
};

enum class ServiceInstallation { first, again };

// An installation that waits for an administrator: the line to run, and a file that goes when it has run.
struct PreparedInstallation {
    std::string shellLine;
    std::string temporaryFile;
};

class ServiceControl {
public:
    virtual ~ServiceControl() = default;

    // What is installed on this machine, compared with the executable.
    [[nodiscard]] virtual ServiceCheck check(const std::string& expectedExecutable) = 0;

    // Writes the description of the service to a temporary file, and gives the line that installs it. Nothing
    // else happens; the line is for AdministratorShell.
    [[nodiscard]] virtual std::expected<PreparedInstallation, FileError>
    prepare(const ServiceProgram& program, ServiceInstallation installation) = 0;

    // Starts the service, ending one that runs. Blocks until the system took the request; whether the service
    // lives is not told.
    virtual void restart(const ServiceProgram& program) = 0;

    // Asks the service to end (SIGTERM). Blocks until the system took the request.
    virtual void terminate() = 0;
};

} // namespace fernwick::platform
