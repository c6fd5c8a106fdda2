// The engine's log, in memory only, and printed as it grows.
// Threads: `add` from any thread while the log lives; everything else on the main thread.
#pragma once

#include "platform/Clock.h"
#include "platform/Dispatch.h"
#include "support/Signal.h"
#include "support/StandardOutput.h"
#include "support/Weak.h"

#include <cstddef>
#include <deque>
#include <string>
#include <string_view>

namespace fernwick {

class EngineLog {
public:
    // Lines kept; each line beyond pushes out the oldest.
    static constexpr std::size_t kCapacity = 500;

    EngineLog(platform::Dispatch& dispatch, const platform::Clock& clock, support::PrintLine print);
    EngineLog(const EngineLog&) = delete;
    EngineLog& operator=(const EngineLog&) = delete;

    // Prints "[ClashEngine] [HH:mm:ss] message" at once, and queues "[HH:mm:ss] message" on the main queue.
    void add(std::string_view message);

    // Prints "[ClashEngine] message", and keeps nothing.
    void print(std::string_view message) const;

    // The lines, newest last.
    [[nodiscard]] const std::deque<std::string>& lines() const { return lines_; }

    // Emitted after a line was added.
    support::Signal<> changed;

private:
    platform::Dispatch& dispatch_;
    const platform::Clock& clock_;
    support::PrintLine print_;
    std::deque<std::string> lines_;
    support::WeakSource<EngineLog> self_{*this};
};

} // namespace fernwick
