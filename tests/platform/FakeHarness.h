// The fake dispatch with time that passes while a test waits.
#pragma once

#include "support/FakeDispatch.h"

namespace fernwick::platform {

class FakeHarness {
public:
    Dispatch& dispatch() { return dispatch_; }

    template <class Condition>
    [[nodiscard]] bool waitUntil(Condition condition) {
        for (int step = 0; step < 1000 && !condition(); ++step) {
            dispatch_.advance(Duration(1));
        }
        return condition();
    }

private:
    fakes::FakeDispatch dispatch_;
};

} // namespace fernwick::platform
