// One running application per user session: a second start raises the first and ends.
// Threads: main thread only.
#pragma once

#include "support/Signal.h"

namespace fernwick::platform {

class SingleInstance {
public:
    enum class Claim {
        first,  // this process is the application
        second, // another one is, and was asked to show itself
    };

    virtual ~SingleInstance() = default;

    // Tries to become the application. Without a session bus nobody can be asked to show itself; another
    // application of the same user is then still found, and the claim answers `second`.
    [[nodiscard]] virtual Claim claim() = 0;

    // Emitted when another start, the desktop or a person asks the application to show itself.
    support::Signal<> reopened;
};

} // namespace fernwick::platform
