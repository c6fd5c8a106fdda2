// A desktop whose tray comes when the test says so. Threads: the test's thread.
#pragma once

#include "platform/TrayHost.h"

namespace fernwick::fakes {

class FakeTrayHost final : public platform::TrayHost {
public:
    void start() override { started = true; }

    bool started = false;
};

} // namespace fernwick::fakes
