// The general pasteboard (the clipboard).
// Threads: main thread.
#pragma once

#include <string_view>

namespace fernwick::platform {

class Pasteboard {
public:
    virtual ~Pasteboard() = default;

    // Replaces whatever is there by this text (UTF-8).
    virtual void setString(std::string_view text) = 0;
};

} // namespace fernwick::platform
