#include "platform/posix/PosixHostEnvironment.h"

#include "platform/posix/AtomicFile.h"

#include <cerrno>
#include <cstdio>
#include <optional>
#include <pwd.h>
#include <string_view>
#include <unistd.h>
#include <vector>

namespace fernwick::platform {

namespace {

Environment currentEnvironment() {
    Environment variables;
    for (char** entry = environ; entry != nullptr && *entry != nullptr; ++entry) {
        const std::string_view text = *entry;
        const auto equals = text.find('=');
        if (equals != std::string_view::npos) {
            // Of a name that is there twice the first counts, as for getenv(3).
            variables.emplace(text.substr(0, equals), text.substr(equals + 1));
        }
    }
    return variables;
}

std::string withoutTrailingSlashes(std::string path) {
    while (path.size() > 1 && path.ends_with('/')) {
        path.pop_back();
    }
    return path;
}

// The variable if it names a folder absolutely. The XDG specification says that relative paths are ignored.
std::optional<std::string> absolutePath(const Environment& variables, std::string_view name) {
    const auto found = variables.find(name);
    if (found == variables.end() || !found->second.starts_with('/')) {
        return std::nullopt;
    }
    return withoutTrailingSlashes(found->second);
}

std::optional<std::string> homeOfAccount() {
    passwd account{};
    passwd* found = nullptr;
    std::vector<char> buffer(4096);
    int error = 0;
    while ((error = getpwuid_r(getuid(), &account, buffer.data(), buffer.size(), &found)) == ERANGE) {
        buffer.resize(buffer.size() * 2);
    }
    if (error != 0 || found == nullptr || account.pw_dir == nullptr || *account.pw_dir != '/') {
        return std::nullopt;
    }
    return withoutTrailingSlashes(account.pw_dir);
}

} // namespace

PosixHostEnvironment::PosixHostEnvironment() : PosixHostEnvironment(currentEnvironment()) {}

PosixHostEnvironment::PosixHostEnvironment(Environment variables)
    : variables_(std::move(variables)),
      // A user id without an account, as containers have them, leaves only HOME.
      accountHome_(homeOfAccount().or_else([&] { return absolutePath(variables_, "HOME"); }).value_or("/")) {}

std::string PosixHostEnvironment::configFolder() const {
    return folder("XDG_CONFIG_HOME", "/.config");
}

std::string PosixHostEnvironment::supportFolder() const {
    return folder("XDG_DATA_HOME", "/.local/share") + "/Fernwick";
}

std::optional<std::string> PosixHostEnvironment::agentFolder() const {
    const auto socket = absolutePath(variables_, "SSH_AUTH_SOCK");
    const auto folder = supportFolder() + "/agent";
    if (!socket || makeFolders(folder) != 0) {
        return std::nullopt;
    }
    // Renamed into its place, so that a login that is just being made finds the old link or the new one.
    const auto place = folder + "/default";
    const auto fresh = place + "." + std::to_string(getpid());
    unlink(fresh.c_str());
    if (symlink(socket->c_str(), fresh.c_str()) != 0 || rename(fresh.c_str(), place.c_str()) != 0) {
        return std::nullopt;
    }
    return folder;
}

std::string PosixHostEnvironment::temporaryFolder() const {
    return absolutePath(variables_, "TMPDIR").value_or("/tmp");
}

std::string PosixHostEnvironment::folder(std::string_view variable, std::string_view fallback) const {
    if (auto path = absolutePath(variables_, variable)) {
        return *path;
    }
    auto home = absolutePath(variables_, "HOME").value_or(accountHome_);
    return (home == "/" ? std::string() : home) + std::string(fallback);
}

} // namespace fernwick::platform
