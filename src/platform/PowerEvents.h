// The machine's sleep and wake (NSWorkspaceWillSleepNotification and NSWorkspaceDidWakeNotification; logind's
// PrepareForSleep).
// Threads: main thread.
#pragma once

#include "support/Signal.h"

namespace fernwick::platform {

class PowerEvents {
public:
    virtual ~PowerEvents() = default;

    // Begins to listen. Where the system has no such service, nothing is ever emitted and nobody is told. Once.
    virtual void start() = 0;

    // Emitted before the machine sleeps. Sleep is held back until the handlers have returned and what they
    // queued on the main queue has run.
    support::Signal<> willSleep;

    // Emitted after it woke.
    support::Signal<> didWake;
};

} // namespace fernwick::platform
