// The environment that this process was started with, and folders by the XDG Base Directory Specification.
#pragma once

#include "platform/HostEnvironment.h"

namespace fernwick::platform {

class PosixHostEnvironment final : public HostEnvironment {
public:
    // Takes a copy of the process's environment.
    PosixHostEnvironment();

    // Takes these variables for the process's own.
    explicit PosixHostEnvironment(Environment variables);

    [[nodiscard]] Environment variables() const override { return variables_; }
    [[nodiscard]] std::string accountHome() const override { return accountHome_; }
    [[nodiscard]] std::string configFolder() const override;
    [[nodiscard]] std::string supportFolder() const override;
    [[nodiscard]] std::optional<std::string> agentFolder() const override;
    [[nodiscard]] std::string temporaryFolder() const override;

private:
    [[nodiscard]] std::string folder(std::string_view variable, std::string_view fallback) const;

    Environment variables_;
    std::string accountHome_;
};

} // namespace fernwick::platform
