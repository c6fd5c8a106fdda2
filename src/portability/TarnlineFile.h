// What Fernwick SSH, the plain ssh client beside this application, writes when it exports its profiles: one
// JSON object in a file named *.fernwick. A member that is not optional here must be there and fit, or the
// whole file is refused; members that are not here are passed over.
#pragma once

#include "support/Record.h"

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

namespace fernwick {

struct TarnlineForwarding {
    std::string uuid;                       // not used
    std::string type;                       // "local", "remote" or "dynamic", in any letter case; or another
    std::optional<std::string> bindAddress; // not used
    std::optional<std::int64_t> bindPort;
    std::optional<std::string> hostAddress;
    std::optional<std::int64_t> hostPort;
    std::optional<bool> enabled; // absent counts as true

    bool operator==(const TarnlineForwarding&) const = default;

    static constexpr auto fields() {
        using support::field;
        return std::tuple{field("uuid", &TarnlineForwarding::uuid),
                          field("type", &TarnlineForwarding::type),
                          field("bindAddress", &TarnlineForwarding::bindAddress),
                          field("bindPort", &TarnlineForwarding::bindPort),
                          field("hostAddress", &TarnlineForwarding::hostAddress),
                          field("hostPort", &TarnlineForwarding::hostPort),
                          field("enabled", &TarnlineForwarding::enabled)};
    }
};

struct TarnlineProfile {
    // Options of ssh_config(5) by name; others as well.
    using Options = std::map<std::string, std::string, std::less<>>;

    std::string uuid;
    std::string name;
    std::string address;
    std::int64_t port = 0; // of the ssh server
    std::string user;
    std::optional<std::string> privateKeyName;
    std::optional<bool> autoConnect;
    std::optional<std::int64_t> retryAttempts;
    std::vector<TarnlineForwarding> forwardings;
    std::optional<Options> options;
    std::optional<std::vector<std::string>> tags; // not used

    bool operator==(const TarnlineProfile&) const = default;

    static constexpr auto fields() {
        using support::field;
        return std::tuple{field("uuid", &TarnlineProfile::uuid),
                          field("name", &TarnlineProfile::name),
                          field("address", &TarnlineProfile::address),
                          field("port", &TarnlineProfile::port),
                          field("user", &TarnlineProfile::user),
                          field("privateKeyName", &TarnlineProfile::privateKeyName),
                          field("autoConnect", &TarnlineProfile::autoConnect),
                          field("retryAttempts", &TarnlineProfile::retryAttempts),
                          field("forwardings", &TarnlineProfile::forwardings),
                          field("options", &TarnlineProfile::options),
                          field("tags", &TarnlineProfile::tags)};
    }
};

struct TarnlineFile {
    std::vector<TarnlineProfile> profiles;

    bool operator==(const TarnlineFile&) const = default;

    static constexpr auto fields() { return std::tuple{support::field("profiles", &TarnlineFile::profiles)}; }
};

} // namespace fernwick
