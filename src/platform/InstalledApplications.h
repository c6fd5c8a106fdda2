// The applications that are installed for this user, to choose from.
// Threads: any.
#pragma once

#include <string>
#include <vector>

namespace fernwick::platform {

struct InstalledApplication {
    std::string name;  // what the desktop calls it, in the user's language
    std::string value; // what the engine matches: the executable's name, or a bundle identifier
    std::string icon;  // an icon's name in the desktop's theme, or an absolute path; may be empty

    bool operator==(const InstalledApplication&) const = default;
};

class InstalledApplications {
public:
    virtual ~InstalledApplications() = default;

    // All of them, by name, each once. Reads the disk anew, so it is spared the main thread; what cannot be
    // read is left out.
    [[nodiscard]] virtual std::vector<InstalledApplication> list() = 0;
};

} // namespace fernwick::platform
