// The desktop's own panels, by Qt; Qt's where the desktop has none.
// Threads: main thread.
#pragma once

#include "platform/Dialogs.h"

namespace fernwick::platform {

class QtDialogs final : public Dialogs {
public:
    // The panel's object name is `openFilePanel`. No panel of Linux has a place for the message.
    void openFile(const OpenFileRequest& request,
                  std::function<void(std::optional<std::string>)> chosen) override;
};

} // namespace fernwick::platform
