// Applications that a test says are installed. Threads: the test's thread.
#pragma once

#include "platform/InstalledApplications.h"

#include <vector>

namespace fernwick::fakes {

class FakeInstalledApplications final : public platform::InstalledApplications {
public:
    [[nodiscard]] std::vector<platform::InstalledApplication> list() override {
        ++reads;
        return applications;
    }

    std::vector<platform::InstalledApplication> applications;
    int reads = 0; // how often they were asked for
};

} // namespace fernwick::fakes
