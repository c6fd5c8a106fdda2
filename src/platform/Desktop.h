// What the application asks of the desktop around it.
// Threads: main thread. Nothing waits for an answer.
#pragma once

#include <string>

namespace fernwick::platform {

class Desktop {
public:
    virtual ~Desktop() = default;

    // Shows the file, selected, in the file manager; its folder where the file manager cannot do that. Says
    // nothing when there is no file manager.
    virtual void reveal(const std::string& path) = 0;
};

} // namespace fernwick::platform
