#include "tunnel/SshLauncher.h"

#include "catalogue/KeyManager.h"
#include "catalogue/StoredList.h"

#include <fmt/ranges.h>

#include <algorithm>

namespace fernwick {

SshLauncher::SshLauncher(const platform::HostEnvironment& host, const platform::UserDefaults& defaults,
                         TunnelLogs& logs)
    : host_(host), defaults_(defaults), logs_(logs) {}

platform::ProcessRequest SshLauncher::compose(const Tunnel& tunnel) const {
    announceCredentials(tunnel);
    platform::ProcessRequest request{.executable = std::string(kSshProgram),
                                     .arguments = buildSSHArguments(tunnel, lookUpKeyFacts(tunnel)),
                                     .environment = childEnvironment(tunnel),
                                     .workingFolder = workingFolder(tunnel)};
    logs_.add(LogLevel::info, fmt::format("Executing: {} {}", kSshProgram, fmt::join(request.arguments, " ")),
              tunnel.id);
    return request;
}

void SshLauncher::announceCredentials(const Tunnel& tunnel) const {
    if (tunnel.authMethod == AuthMethod::password) {
        logs_.add(LogLevel::warning, "⚠ Password auth nhưng password trống", tunnel.id);
    }
}

platform::Environment SshLauncher::childEnvironment(const Tunnel& tunnel) const {
    auto environment = host_.variables();
    if (!environment.contains("HOME")) {
        environment["HOME"] = host_.accountHome();
    }
    if (tunnel.authMethod != AuthMethod::agent) {
        environment.erase("SSH_AUTH_SOCK");
    }
    environment.erase("SSH_BATCH_MODE");
    return environment;
}

// ssh takes the "default" of "IdentityAgent=default" for the path of a socket, relative to where it runs.
std::string SshLauncher::workingFolder(const Tunnel& tunnel) const {
    return tunnel.authMethod == AuthMethod::agent ? host_.agentFolder().value_or("") : "";
}

KeyFacts SshLauncher::lookUpKeyFacts(const Tunnel& tunnel) const {
    if (tunnel.authMethod != AuthMethod::privateKey || !tunnel.identityKeyID) {
        return {};
    }
    const auto keys = readStoredList<IdentityKey>(defaults_, KeyManager::kDefaultsKey);
    if (!keys) {
        return {};
    }
    const auto key = std::ranges::find(*keys, *tunnel.identityKeyID, &IdentityKey::id);
    return key != keys->end() ? KeyFacts{.path = key->path} : KeyFacts{};
}

} // namespace fernwick
