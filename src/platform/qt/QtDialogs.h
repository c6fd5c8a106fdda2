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
    // The same name.
    void openFiles(const OpenFileRequest& request,
                   std::function<void(std::vector<std::string>)> chosen) override;
    // The panel's object name is `folderPanel`.
    void chooseFolder(const FolderRequest& request,
                      std::function<void(std::optional<std::string>)> chosen) override;
    // The panel's object name is `saveFilePanel`. It starts in the person's documents.
    void saveFile(const SaveFileRequest& request,
                  std::function<void(std::optional<std::string>)> chosen) override;
};

} // namespace fernwick::platform
