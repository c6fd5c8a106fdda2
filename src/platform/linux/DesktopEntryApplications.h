// The installed applications by their desktop entries, in $XDG_DATA_HOME/applications and in the folder
// applications of each of $XDG_DATA_DIRS (XDG Base Directory and Desktop Entry Specifications). Of entries with
// the same desktop file id the one in the earlier folder counts, even if it is hidden.
//
// The value of an application is what the kernel calls the program that it runs: the base name of
// /proc/PID/exe, by which the engine's PROCESS-NAME rules match. Links are followed; a script that is not a
// shell's runs as its interpreter. A shell's script mostly starts a program of its own name, so its own name is
// taken; what a snap is called out here goes by its command. Threads: any.
#pragma once

#include "platform/HostEnvironment.h"
#include "platform/InstalledApplications.h"

#include <string>
#include <vector>

namespace fernwick::platform {

class DesktopEntryApplications final : public InstalledApplications {
public:
    // Larger files are no desktop entries, and more files than these are not looked at.
    static constexpr std::size_t kLargestFile = 1U << 20U;
    static constexpr std::size_t kMostFiles = 20000;

    // Takes what it needs from the environment at once.
    explicit DesktopEntryApplications(const HostEnvironment& host);

    [[nodiscard]] std::vector<InstalledApplication> list() override;

private:
    std::vector<std::string> folders_; // where entries lie, the first before the others
    std::vector<std::string> path_;    // where programs lie
    std::vector<std::string> locales_; // the user's, best first
};

} // namespace fernwick::platform
