// A desktop that writes down what it is asked for.
// Threads: the test's thread.
#pragma once

#include "platform/Desktop.h"

#include <string>
#include <vector>

namespace fernwick::fakes {

class FakeDesktop final : public platform::Desktop {
public:
    void reveal(const std::string& path) override { revealed.push_back(path); }

    std::vector<std::string> revealed;
};

} // namespace fernwick::fakes
