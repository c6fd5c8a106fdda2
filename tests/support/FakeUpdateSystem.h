// A system on which nothing is really unpacked, swapped or asked for. Threads: the test's thread.
#pragma once

#include "platform/UpdateSystem.h"

#include <optional>
#include <string>
#include <vector>

namespace fernwick::fakes {

class FakeUpdateSystem final : public platform::UpdateSystem {
public:
    [[nodiscard]] platform::CommandRequest unpacking(const std::string& archive,
                                                     const std::string& folder) const override {
        return {.executable = "/usr/bin/unpack", .arguments = {archive, folder}};
    }
    [[nodiscard]] std::string script(const platform::UpdateSwap& swap) const override {
        return swap.source + " to " + swap.target + (swap.asAdministrator ? " as administrator" : "");
    }
    [[nodiscard]] std::expected<void, platform::AdministratorError>
    startAsAdministrator(const std::string& scriptPath) override {
        started.push_back(scriptPath);
        if (refusal) {
            return std::unexpected(platform::AdministratorError{*refusal});
        }
        return {};
    }

    std::vector<std::string> started;   // scripts, as administrator
    std::optional<std::string> refusal; // what the system says when it does not grant the rights
};

} // namespace fernwick::fakes
