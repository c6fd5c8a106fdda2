// The login item as a desktop entry in the folder of those that the desktop starts (Desktop Application
// Autostart Specification 0.5, freedesktop.org). Threads: main thread. Each operation touches one small file.
#pragma once

#include "platform/FileSystem.h"
#include "platform/HostEnvironment.h"
#include "platform/LoginItem.h"

#include <string>
#include <string_view>

namespace fernwick::platform {

// What tells the application that nobody asked to see it.
inline constexpr std::string_view kHiddenArgument = "--hidden";

// An argument as the value of Exec holds it (Desktop Entry Specification 1.5, "The Exec key").
[[nodiscard]] std::string quotedForExec(std::string_view argument);

// The entry that starts the program hidden. The path is absolute and in UTF-8.
[[nodiscard]] std::string autostartEntry(std::string_view program);

class AutostartEntry final : public LoginItem {
public:
    // The file is `autostart/com.fernwick.Fernwick.desktop` in the folder for configuration. The program is the
    // absolute path of what is to be started. The file system outlives the item.
    AutostartEntry(FileSystem& files, const HostEnvironment& host, std::string program)
        : files_(files),
          folder_(host.configFolder() + "/autostart"),
          path_(folder_ + "/com.fernwick.Fernwick.desktop"),
          program_(std::move(program)) {}

    // Replaces the entry, one that the person switched off in the desktop's own settings as well. Fails for a
    // program whose path is not UTF-8, which no entry can hold.
    [[nodiscard]] std::expected<void, std::string> enable() override;

    // Removes the entry.
    [[nodiscard]] std::expected<void, std::string> disable() override;

private:
    FileSystem& files_;
    const std::string folder_;
    const std::string path_;
    const std::string program_;
};

} // namespace fernwick::platform
