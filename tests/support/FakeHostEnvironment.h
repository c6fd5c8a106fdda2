// An environment that a test fills in.
#pragma once

#include "platform/HostEnvironment.h"

namespace fernwick::fakes {

class FakeHostEnvironment final : public platform::HostEnvironment {
public:
    [[nodiscard]] platform::Environment variables() const override { return environment; }
    [[nodiscard]] std::string accountHome() const override { return home; }
    [[nodiscard]] std::string configFolder() const override { return config; }
    [[nodiscard]] std::string supportFolder() const override { return support; }
    [[nodiscard]] std::optional<std::string> agentFolder() const override { return agent; }
    [[nodiscard]] std::string temporaryFolder() const override { return temporary; }

    platform::Environment environment{{"HOME", "/home/someone"}, {"PATH", "/usr/bin:/bin"}};
    std::string home = "/home/someone";
    std::string config = "/home/someone/.config";
    std::string support = "/home/someone/.local/share/Fernwick";
    std::optional<std::string> agent;
    std::string temporary = "/tmp";
};

} // namespace fernwick::fakes
