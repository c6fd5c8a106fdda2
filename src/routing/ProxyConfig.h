// One proxy that rules can send traffic to.
#pragma once

#include "support/Record.h"
#include "support/Uuid.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <tuple>

namespace fernwick {

// What a proxy speaks. The raw text is both the stored value and the label on screen.
enum class ProxyProtocol { socks5, socks4, https };

constexpr auto rawTexts(ProxyProtocol) {
    return std::array{support::rawText(ProxyProtocol::socks5, "SOCKS5"),
                      support::rawText(ProxyProtocol::socks4, "SOCKS4"),
                      support::rawText(ProxyProtocol::https, "HTTPS")};
}

// Name and password for a proxy. Both are clear text, in the record as in the engine's configuration.
struct ProxyAuthentication {
    bool enabled = false; // whether the two are written out
    std::string username;
    std::string password;

    bool operator==(const ProxyAuthentication&) const = default;

    static constexpr auto fields() {
        using support::field;
        return std::tuple{field("enabled", &ProxyAuthentication::enabled),
                          field("username", &ProxyAuthentication::username),
                          field("password", &ProxyAuthentication::password)};
    }
};

struct ProxyConfig {
    support::Uuid id; // what rules refer to
    std::string name = "New Proxy";
    std::string address = "127.0.0.1"; // host name or IP
    std::int64_t port = 1080;          // any number; nothing here bounds it
    ProxyProtocol proto = ProxyProtocol::socks5;
    ProxyAuthentication authentication;
    bool useTargetHostname = false;        // kept for the editor; neither path reads it
    std::optional<support::Uuid> tunnelID; // reached by this tunnel's local port instead of address and port

    bool operator==(const ProxyConfig&) const = default;

    // A new proxy: the defaults, and an id of its own.
    [[nodiscard]] static ProxyConfig create();

    // The name, or "address:port" when it is empty.
    [[nodiscard]] std::string effectiveName() const;

    static constexpr auto fields() {
        using support::field;
        return std::tuple{field("id", &ProxyConfig::id),
                          field("name", &ProxyConfig::name),
                          field("address", &ProxyConfig::address),
                          field("port", &ProxyConfig::port),
                          field("proto", &ProxyConfig::proto),
                          field("authentication", &ProxyConfig::authentication),
                          field("useTargetHostname", &ProxyConfig::useTargetHostname),
                          field("tunnelID", &ProxyConfig::tunnelID)};
    }
};

} // namespace fernwick
