// The installation of a fetched update, up to the start of the script that swaps the application.
// Threads: any; it blocks while the archive is unpacked and while a person is asked for administrator rights.
#pragma once

#include "platform/ApplicationBundle.h"
#include "platform/CommandRunner.h"
#include "platform/FileItems.h"
#include "platform/FileSystem.h"
#include "platform/UpdateSystem.h"

#include <expected>
#include <string>

namespace fernwick {

// The permission bits of the script: its owner may change it, everybody run it.
inline constexpr unsigned kUpdateScriptMode = 0755;

// What an installation works with, and where.
struct UpdateInstallServices {
    const platform::ApplicationBundle& bundle;
    platform::FileSystem& files;
    platform::FileItems& items;
    platform::CommandRunner& commands;
    platform::UpdateSystem& system;
    std::string temporaryFolder; // absolute
};

// Moves the downloaded file to the archive's path, where an older one goes. On failure the downloaded
// file is removed too, and what comes back is the message for the person.
[[nodiscard]] std::expected<void, std::string>
takeDownload(const UpdateInstallServices& services, const std::string& downloaded, const std::string& archive);

// Unpacks the archive if its extension says that it is a zip file, else takes it for the application itself;
// writes the script and starts it. Returns once the script waits for the application's end, or the message for
// the person. The working folder and the archive are never removed.
[[nodiscard]] std::expected<void, std::string> installArchive(const UpdateInstallServices& services,
                                                              const std::string& archive);

// The line for /bin/bash that starts the script so that it outlives the application.
[[nodiscard]] std::string updateShellLine(const std::string& scriptPath);

} // namespace fernwick
