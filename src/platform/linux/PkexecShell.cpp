#include "platform/linux/PkexecShell.h"

#include "platform/linux/Trimmed.h"

#include <unistd.h>
#include <vector>

namespace fernwick::platform {

namespace {

constexpr const char* kPkexec = "/usr/bin/pkexec";
constexpr int kDismissed = 126; // pkexec(1), "RETURN VALUE"

} // namespace

std::expected<void, AdministratorError> PkexecShell::run(const std::string& line) {
    auto words = access(program_.c_str(), X_OK) == 0 ? std::vector<std::string>{program_}
                                                     : std::vector<std::string>{"/bin/sh", "-c"};
    words.push_back(line);
    const auto result = commands_.run({.executable = kPkexec, .arguments = std::move(words)});
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
