// One running application per user session: a second start raises the first and ends.
// Threads: main thread only.
#pragma once

#include "support/Signal.h"

namespace fernwick::platform {

class SingleInstance {
public:
    enum class Claim {
        first,  // this process is the application
        second, // another one is
    };

    // How the process was started.
    enum class Start {
        shown,  // by somebody who wants to see the application
        hidden, // to the menu bar, e.g. at login
    };

    virtual ~SingleInstance() = default;

    // Tries to become the application. A second one asks the first to show itself, unless its own start was
    // hidden. Without a session bus nobody can be asked; another application of the same user is then still
    // found, and the claim answers `second`.
    [[nodiscard]] virtual Claim claim(Start start) = 0;

    // Emitted when another start, the desktop or a person asks the application to show itself.
    support::Signal<> reopened;
};

} // namespace fernwick::platform
