#include "platform/linux/PkexecShell.h"

#include "platform/linux/Trimmed.h"

namespace fernwick::platform {

namespace {

constexpr const char* kPkexec = "/usr/bin/pkexec";
constexpr int kDismissed = 126; // pkexec(1), "RETURN VALUE"

} // namespace

std::expected<void, AdministratorError> PkexecShell::run(const std::string& line) {
    const auto result = commands_.run({.executable = kPkexec, .arguments = {"/bin/sh", "-c", line}});
    if (!result) {
        return std::unexpected(AdministratorError{std::string(kPkexec) + ": " + result.error().description});
    }
    if (result->status == 0) {
        return {};
    }
    if (result->status == kDismissed) {
        return std::unexpected(AdministratorError{kAdministratorCanceled});
    }
    return std::unexpected(AdministratorError{std::string(trimmed(result->standardError))});
}

} // namespace fernwick::platform
