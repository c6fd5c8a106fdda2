// The running application as it lies on the disk.
// Threads: any; nothing changes after the start.
#pragma once

#include <optional>
#include <string>

namespace fernwick::platform {

class ApplicationBundle {
public:
    virtual ~ApplicationBundle() = default;

    // The item that an update replaces, an absolute path: the folder `Fernwick.app` around the program, or the
    // single file that the application was started from.
    [[nodiscard]] virtual std::string path() const = 0;

    // `CFBundleShortVersionString` of the bundle's Info.plist, e.g. "3.1.0"; nothing when it is missing or no
    // string. Reads the file.
    [[nodiscard]] virtual std::optional<std::string> version() const = 0;
};

} // namespace fernwick::platform
