// What a network monitor has told.
#pragma once

#include "platform/NetworkMonitor.h"
#include "support/WaitUntil.h"

#include <functional>
#include <mutex>
#include <vector>

namespace fernwick::platform {

class Statuses {
public:
    using List = std::vector<NetworkPathStatus>;

    [[nodiscard]] std::function<void(NetworkPathStatus)> handler() {
        return [this](NetworkPathStatus status) {
            const std::lock_guard lock(mutex_);
            told_.push_back(status);
        };
    }

    [[nodiscard]] List all() const {
        const std::lock_guard lock(mutex_);
        return told_;
    }

    // Waits until just these have been told.
    [[nodiscard]] bool become(const List& expected) const {
        return fakes::waitUntil([&] { return all() == expected; });
    }

    // Whether it stays at these for longer than a change takes to settle.
    [[nodiscard]] bool stay(const List& expected) const {
        return fakes::staysTrue([&] { return all() == expected; }, std::chrono::milliseconds(150));
    }

private:
    mutable std::mutex mutex_;
    List told_;
};

} // namespace fernwick::platform
