// The proxy engine as a service of the system that runs as root (launchd daemon, systemd unit), since it makes
// a network device. Trust: the service runs, as root, an executable and a configuration that may lie where the
// user can write. An administrator agrees to that once, when the service is installed; whoever can write there
// is as good as root from then on. What a backend guards against is everybody else. Threads: any; one operation
// at a time. `check` and `prepare` read or write one small file of this machine; `restart` and `terminate` wait
// for the system, so they are spared the main thread.
#pragma once

#include "platform/FileSystem.h"

#include <expected>
#include <string>

namespace fernwick::platform {

// The name that the system knows the service by, and the file that takes what the engine writes.
inline constexpr const char* kServiceLabel = "com.fernwick.mihomo";
inline constexpr const char* kServiceLog = "/tmp/fernwick-mihomo.log";

// What the service runs; absolute paths without a NUL in them.
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

// An installation that waits for an administrator: the line of /bin/sh to run, and a file to remove when it has
// run or was refused. The file is empty where there is none.
struct PreparedInstallation {
    std::string shellLine;
    std::string temporaryFile;
};

class ServiceControl {
public:
    virtual ~ServiceControl() = default;

    // What is installed on this machine, compared with the executable. Nothing is changed.
    [[nodiscard]] virtual ServiceCheck check(const std::string& expectedExecutable) = 0;

    // Writes the description of the service to a temporary file, and gives the line that installs it in place
    // of any other. Nothing else happens; the line is for AdministratorShell. Fails when the file cannot be
    // written.
    [[nodiscard]] virtual std::expected<PreparedInstallation, FileError>
    prepare(const ServiceProgram& program, ServiceInstallation installation) = 0;

    // Starts the service, ending one that runs. Blocks until the system took the request, half a minute at the
    // most; asks no person for anything. Whether the service lives is not told.
    virtual void restart(const ServiceProgram& program) = 0;

    // Asks the service to end (SIGTERM), if it runs. Blocks until the system took the request, ten seconds at
    // the most; asks no person for anything.
    virtual void terminate() = 0;
};

} // namespace fernwick::platform
