// The running application on Linux: an AppImage, a folder `Fernwick.app`, or the program alone.
// Threads: any.
#pragma once

#include "platform/ApplicationBundle.h"
#include "platform/ChildProcess.h"

#include <string>

namespace fernwick::platform {

// The path of the file that this process runs, links resolved (/proc/self/exe); empty where /proc is missing.
[[nodiscard]] std::string runningProgram();

class ProgramBundle final : public ApplicationBundle {
public:
    // The program is a path without links. Its item is the file that $APPIMAGE names, if that is a regular file
    // and the program lies in $APPDIR: both come with the environment of any AppImage's terminal too. Else the
    // nearest folder above the program whose name ends in ".app". Else the program itself.
    ProgramBundle(const Environment& environment, std::string program);

    [[nodiscard]] std::string path() const override { return path_; }

    // From Info.plist in the program's folder.
    [[nodiscard]] std::optional<std::string> version() const override;

private:
    std::string program_;
    std::string path_;
};

} // namespace fernwick::platform
