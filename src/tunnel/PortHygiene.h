// Clears a local port by force, so that a new ssh child can bind it: ends whatever lsof(8) reports for the
// port, be it a listener, a client of a far port of that number, or a process of our own. Threads: any, unless
// an operation says otherwise; both queries block.
#pragma once

#include "platform/Clock.h"
#include "platform/CommandRunner.h"
#include "platform/Dispatch.h"
#include "tunnel/TunnelLogs.h"

#include <string>
#include <string_view>
#include <vector>

namespace fernwick {

class PortHygiene {
public:
    // How long what was asked to end may take before it is killed.
    static constexpr platform::Duration kKillDelay{300};

    // How long a child that was stopped may take to leave its port.
    static constexpr platform::Duration kOrphanDelay{300};

    // After this time lsof is taken for stuck, and the port for free.
    static constexpr platform::Duration kScanLimit{10'000};

    struct Services {
        platform::Dispatch& dispatch;
        const platform::Clock& clock;
        platform::CommandRunner& runner;
        platform::Processes& processes;
    };

    // The logs and the services outlive what this object has queued.
    PortHygiene(Services services, TunnelLogs& logs);
    PortHygiene(const PortHygiene&) = delete;
    PortHygiene& operator=(const PortHygiene&) = delete;

    // The ids of the processes that use the port, in lsof's order; empty when there are none or lsof cannot
    // tell. The port reaches the shell as it stands.
    [[nodiscard]] std::vector<int> listenersOnPort(std::string_view port) const;

    // Scans, ends what it found (SIGTERM, and SIGKILL 0.3 seconds later), and returns it. Sleeps on the calling
    // thread for that time if there is anything to end.
    std::vector<int> killListenersOnPort(std::string_view port) const;

    // Clears the port in the background, tells the tunnel's log if there was anything to clear, and calls
    // `launch` on the main thread in every case. Main thread.
    void clearPortsBeforeLaunch(std::string port, const support::Uuid& id, platform::Work launch);

    // Ends, in the background and after a moment, whatever a stopped tunnel left on its port. Main thread.
    void cleanOrphanedPort(std::string port, const support::Uuid& id);

private:
    Services services_;
    TunnelLogs& logs_;
    support::WeakSource<PortHygiene> self_;
};

// The process ids in what `lsof -t` printed: one to a line; a line that is no decimal signed 32-bit number, or
// not above 0, is skipped.
[[nodiscard]] std::vector<int> parseProcessIds(std::string_view output);

} // namespace fernwick
