// An application that lies where a test wants it. Threads: the test's thread.
#pragma once

#include "platform/ApplicationBundle.h"

namespace fernwick::fakes {

class FakeApplicationBundle final : public platform::ApplicationBundle {
public:
    [[nodiscard]] std::string path() const override { return item; }
    [[nodiscard]] std::optional<std::string> version() const override { return shortVersion; }

    std::string item = "/opt/Fernwick.app";
    std::optional<std::string> shortVersion = "3.1.0";
};

} // namespace fernwick::fakes
