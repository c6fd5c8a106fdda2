#include "tunnel/SshLauncher.h"

#include "catalogue/KeyManager.h"
#include "catalogue/StoredList.h"

#include <fmt/ranges.h>

#include <algorithm>
#include <utility>

namespace fernwick {

SshLauncher::SshLauncher(const platform::HostEnvironment& host, const platform::UserDefaults& defaults,
                         const KeychainStore& keychain, AskpassScripts scripts, TunnelLogs& logs)
    : host_(host), defaults_(defaults), keychain_(keychain), scripts_(std::move(scripts)), logs_(logs) {}

platform::ProcessRequest SshLauncher::compose(const Tunnel& tunnel) const {
    auto environment = childEnvironment(tunnel);
    if (const auto secret = credentials(tunnel)) {
        environment["SSH_ASKPASS"] = scripts_.createAskpassScript(*secret);
        environment["SSH_ASKPASS_REQUIRE"] = "force";
        environment["DISPLAY"] = ":0";
    }
    platform::ProcessRequest request{.executable = std::string(kSshProgram),
                                     .arguments = buildSSHArguments(tunnel, lookUpKeyFacts(tunnel)),
                                     .environment = std::move(environment),
                                     .workingFolder = workingFolder(tunnel)};
    logs_.add(LogLevel::info, fmt::format("Executing: {} {}", kSshProgram, fmt::join(request.arguments, " ")),
              tunnel.id);
    return request;
}

// The secret that ssh will ask for, told in the log; nothing where none is stored or none is needed.
std::optional<support::Secret> SshLauncher::credentials(const Tunnel& tunnel) const {
    if (tunnel.authMethod == AuthMethod::password) {
        auto password = keychain_.loadTunnelPassword(tunnel.id);
        if (password) {
            logs_.add(LogLevel::info, "🔑 Dùng password auth", tunnel.id);
        } else {
            logs_.add(LogLevel::warning, "⚠ Password auth nhưng password trống", tunnel.id);
        }
        return password;
    }
    if (tunnel.authMethod != AuthMethod::privateKey || !tunnel.identityKeyID) {
        return std::nullopt;
    }
    auto passphrase = keychain_.loadKeyPassphrase(*tunnel.identityKeyID);
    if (passphrase) {
        logs_.add(LogLevel::info, "🔑 Dùng passphrase từ Keychain cho key", tunnel.id);
    }
    return passphrase;
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
    KeyFacts facts;
    facts.hasStoredPassphrase = keychain_.loadKeyPassphrase(*tunnel.identityKeyID).has_value();
    // By design a list that cannot be read is not reported: the key then has no path.
    if (const auto keys = readStoredList<IdentityKey>(defaults_, KeyManager::kDefaultsKey)) {
        const auto key = std::ranges::find(*keys, *tunnel.identityKeyID, &IdentityKey::id);
        if (key != keys->end()) {
            facts.path = key->path;
        }
    }
    return facts;
}

} // namespace fernwick
