// Whether the application is started when the person logs in.
// Threads: main thread.
#pragma once

#include <expected>
#include <string>

namespace fernwick::platform {

class LoginItem {
public:
    virtual ~LoginItem() = default;

    // Has the application started at login, hidden to the menu bar. The error is the system's text.
    [[nodiscard]] virtual std::expected<void, std::string> enable() = 0;

    // Ends that. Success when it was not so before.
    [[nodiscard]] virtual std::expected<void, std::string> disable() = 0;
};

} // namespace fernwick::platform
