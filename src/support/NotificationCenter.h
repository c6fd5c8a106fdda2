// Named announcements inside the process, for parts that must not know each other.
// Threads: main thread only.
#pragma once

#include "support/Signal.h"

#include <functional>
#include <map>
#include <string>
#include <string_view>

namespace fernwick::support {

class NotificationCenter {
public:
    // Calls `handler` for each post of that name until the subscription is destroyed.
    [[nodiscard]] Subscription observe(std::string_view name, std::function<void()> handler) {
        return signals_[std::string(name)].connect(std::move(handler));
    }

    // Calls the observers of that name, in the order in which they came, before it returns.
    void post(std::string_view name) const {
        if (const auto found = signals_.find(name); found != signals_.end()) {
            found->second.emit();
        }
    }

private:
    std::map<std::string, Signal<>, std::less<>> signals_;
};

} // namespace fernwick::support
