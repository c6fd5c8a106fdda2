// One saved tunnel definition, and the two enumerations that it is made of.
#pragma once

#include "support/Date.h"
#include "support/Record.h"
#include "support/Uuid.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

namespace fernwick {

// The kind of forward. The raw text is both the stored value and the label on screen.
enum class TunnelType { localForward, remoteForward, socks5, dynamicForward };

constexpr auto rawTexts(TunnelType) {
    return std::array{support::rawText(TunnelType::localForward, "Local Forward"),
                      support::rawText(TunnelType::remoteForward, "Remote Forward"),
                      support::rawText(TunnelType::socks5, "SOCKS5 Proxy"),
                      support::rawText(TunnelType::dynamicForward, "Dynamic Forward")};
}

// How ssh logs in. The raw text is both the stored value and the label on screen.
enum class AuthMethod { password, privateKey, agent };

constexpr auto rawTexts(AuthMethod) {
    return std::array{support::rawText(AuthMethod::password, "Password"),
                      support::rawText(AuthMethod::privateKey, "Private Key"),
                      support::rawText(AuthMethod::agent, "SSH Agent")};
}

// Ports are text on purpose: nothing here parses or bounds them, and they reach ssh as typed.
struct Tunnel {
    support::Uuid id;
    std::string name;
    std::string host;
    std::string sshPort = "22";
    std::string user;
    std::string localPort;  // port on this machine; may be empty
    std::string remotePort; // port on the far side; may be empty
    std::string remoteHost = "localhost";
    TunnelType tunnelType = TunnelType::localForward;
    AuthMethod authMethod = AuthMethod::privateKey;
    std::optional<support::Uuid> identityKeyID; // the IdentityKey used with privateKey
    std::vector<support::Uuid> tagIDs;          // may name tags that no longer exist
    std::string notes;
    std::int64_t keepAliveInterval = 60; // seconds
    bool reconnectOnFailure = true;
    bool compression = false;
    std::string jumpHost;
    support::Date createdAt;
    std::optional<support::Date> lastConnectedAt; // set each time the tunnel reaches connected

    bool operator==(const Tunnel&) const = default;

    static constexpr auto fields() {
        using support::field;
        return std::tuple{field("id", &Tunnel::id),
                          field("name", &Tunnel::name),
                          field("host", &Tunnel::host),
                          field("sshPort", &Tunnel::sshPort),
                          field("user", &Tunnel::user),
                          field("localPort", &Tunnel::localPort),
                          field("remotePort", &Tunnel::remotePort),
                          field("remoteHost", &Tunnel::remoteHost),
                          field("tunnelType", &Tunnel::tunnelType),
                          field("authMethod", &Tunnel::authMethod),
                          field("identityKeyID", &Tunnel::identityKeyID),
                          field("tagIDs", &Tunnel::tagIDs),
                          field("notes", &Tunnel::notes),
                          field("keepAliveInterval", &Tunnel::keepAliveInterval),
                          field("reconnectOnFailure", &Tunnel::reconnectOnFailure),
                          field("compression", &Tunnel::compression),
                          field("jumpHost", &Tunnel::jumpHost),
                          field("createdAt", &Tunnel::createdAt),
                          field("lastConnectedAt", &Tunnel::lastConnectedAt)};
    }
};

} // namespace fernwick
