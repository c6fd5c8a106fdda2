// What a child's handlers were told.
#pragma once

#include "platform/ChildProcess.h"

#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace fernwick::platform {

// In order: "E:" with bytes of standard error, "X:" with the status of the end. The handlers are called on a
// thread of the backend's.
class Told {
public:
    [[nodiscard]] ProcessHandlers handlers() {
        return {.standardError = [this](std::string bytes) { append("E:" + std::move(bytes)); },
                .exit = [this](int status) { append("X:" + std::to_string(status)); }};
    }
    [[nodiscard]] std::vector<std::string> all() const {
        const std::lock_guard lock(mutex_);
        return told_;
    }
    [[nodiscard]] bool ended() const {
        const auto told = all();
        return !told.empty() && told.back().starts_with("X:");
    }

private:
    void append(std::string what) {
        const std::lock_guard lock(mutex_);
        told_.push_back(std::move(what));
    }

    mutable std::mutex mutex_;
    std::vector<std::string> told_;
};

} // namespace fernwick::platform
