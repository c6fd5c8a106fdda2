// Shell lines that run with administrator rights, which the system asks a person for.
// Threads: any. A run blocks until the person has answered and the line has ended, so it never happens on the
// main thread.
#pragma once

#include <expected>
#include <string>

namespace fernwick::platform {

// What the message of an error contains when the person refused.
inline constexpr const char* kAdministratorCanceled = "User canceled";

struct AdministratorError {
    std::string message; // the system's own words; empty when it gave none
};

class AdministratorShell {
public:
    virtual ~AdministratorShell() = default;

    // Runs one line of /bin/sh as root. An exit status other than 0 is an error.
    [[nodiscard]] virtual std::expected<void, AdministratorError> run(const std::string& line) = 0;
};

} // namespace fernwick::platform
