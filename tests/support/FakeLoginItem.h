// A login item in memory, which can refuse on command.
// Threads: the test's thread.
#pragma once

#include "platform/LoginItem.h"

#include <optional>
#include <string>
#include <vector>

namespace fernwick::fakes {

class FakeLoginItem final : public platform::LoginItem {
public:
    [[nodiscard]] std::expected<void, std::string> enable() override { return answer("enable", true); }
    [[nodiscard]] std::expected<void, std::string> disable() override { return answer("disable", false); }

    bool enabled = false;
    std::vector<std::string> calls;
    std::optional<std::string> failure; // of every call while it is set

private:
    [[nodiscard]] std::expected<void, std::string> answer(const char* call, bool on) {
        calls.emplace_back(call);
        if (failure) {
            return std::unexpected(*failure);
        }
        enabled = on;
        return {};
    }
};

} // namespace fernwick::fakes
