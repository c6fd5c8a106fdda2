// The logs of all tunnels, in memory only: the newest 500 lines of each.
// Threads: `add` from any thread; everything else on the main thread.
#pragma once

#include "catalogue/LogEntry.h"
#include "platform/Clock.h"
#include "platform/Dispatch.h"
#include "support/Signal.h"
#include "support/Weak.h"

#include <deque>
#include <string>
#include <unordered_map>

namespace fernwick {

class TunnelLogs {
public:
    // Lines kept per tunnel; each line beyond pushes out the oldest.
    static constexpr std::size_t kCapacity = 500;

    TunnelLogs(platform::Dispatch& dispatch, const platform::Clock& clock);
    TunnelLogs(const TunnelLogs&) = delete;
    TunnelLogs& operator=(const TunnelLogs&) = delete;

    // The tunnel's lines, newest last; empty for a tunnel that has none.
    [[nodiscard]] const std::deque<LogEntry>& lines(const support::Uuid& id) const;

    // Queues a line on the main queue. Its time is taken when the queued work runs.
    void add(LogLevel level, std::string message, const support::Uuid& id);

    // Appends a line at once.
    void append(LogLevel level, std::string message, const support::Uuid& id);

    // Empties the tunnel's log.
    void clear(const support::Uuid& id);

    // Emitted with the tunnel's id after a line was added or the log was emptied.
    support::Signal<const support::Uuid&> changed;

private:
    platform::Dispatch& dispatch_;
    const platform::Clock& clock_;
    std::unordered_map<support::Uuid, std::deque<LogEntry>> logs_;
    support::WeakSource<TunnelLogs> self_;
};

} // namespace fernwick
