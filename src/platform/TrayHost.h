// Whether the desktop has a place for icons of running applications (the menu bar's status items; a host of
// StatusNotifierItems, or a tray of the X server), now or later.
// Threads: main thread.
#pragma once

#include "support/Signal.h"

namespace fernwick::platform {

class TrayHost {
public:
    virtual ~TrayHost() = default;

    // Begins to look; the answers come later, never from within the call. Once.
    virtual void start() = 0;

    // Emitted once, as soon as there is a place: soon after the start, or whenever it comes. That it goes
    // again is not told; whoever shows an icon keeps it, and a new host picks it up.
    support::Signal<> appeared;

    // Emitted at most once, when the first look found no place.
    support::Signal<> absent;
};

} // namespace fernwick::platform
