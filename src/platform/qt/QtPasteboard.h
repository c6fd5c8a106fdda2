// The clipboard, by Qt.
// Threads: main thread.
#pragma once

#include "platform/Pasteboard.h"

namespace fernwick::platform {

class QtPasteboard final : public Pasteboard {
public:
    void setString(std::string_view text) override;
};

} // namespace fernwick::platform
