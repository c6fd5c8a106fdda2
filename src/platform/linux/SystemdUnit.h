// The text of the proxy engine's unit (systemd.service(5)), written and read. Threads: any.
#pragma once

#include "platform/ServiceControl.h"

#include <optional>
#include <string>
#include <string_view>

namespace fernwick::platform {

inline constexpr const char* kSystemdUnitName = "com.fernwick.mihomo.service";

// Where the unit is installed (systemd.unit(5), "Unit File Load Path").
inline constexpr const char* kSystemdUnit = "/etc/systemd/system/com.fernwick.mihomo.service";

// The unit. It runs as root, which the engine needs for its network device, and never starts by itself: there
// is no [Install] section. `user` is the one that the service is installed for; it stands in a section that
// systemd passes over. Each text is quoted, so that any path is possible.
[[nodiscard]] std::string systemdUnit(const ServiceProgram& program, std::string_view user);

// What a unit says; it need not be one of ours.
struct SystemdUnitFacts {
    std::optional<std::string> executable;   // of the first ExecStart line that has one, absolute
    bool asRoot = false;                     // whether there is a line User=root
    std::optional<std::string> installedFor; // the user, if one is named

    bool operator==(const SystemdUnitFacts&) const = default;
};

[[nodiscard]] SystemdUnitFacts readSystemdUnit(std::string_view text);

// The text as one word of a command line in a unit, in double quotes (systemd.syntax(7), "Quoting", and
// systemd.unit(5), "Specifiers"). For lines without substitution of variables.
[[nodiscard]] std::string systemdWord(std::string_view text);

} // namespace fernwick::platform
