#include "SampleCatalogue.h"

#include <random>
#include <string>

namespace fernwick::benchmarks {
namespace {

support::Uuid nextUuid(std::mt19937_64& random) {
    support::Uuid uuid;
    for (auto& byte : uuid.bytes) {
        byte = static_cast<std::uint8_t>(random());
    }
    return uuid;
}

Tunnel sampleTunnel(std::size_t index, std::string_view label, std::mt19937_64& random) {
    constexpr double kSomeDay = 780000000.0;
    const std::string number = std::to_string(index);
    Tunnel tunnel;
    tunnel.id = nextUuid(random);
    tunnel.name = std::string(label) + " " + number;
    tunnel.host = "host-" + number + ".internal.example.com";
    tunnel.user = index % 3 == 0 ? "deploy" : "ubuntu";
    tunnel.localPort = std::to_string(10000 + index % 50000);
    tunnel.remotePort = "5432";
    tunnel.identityKeyID = nextUuid(random);
    tunnel.tagIDs = {nextUuid(random)};
    tunnel.notes = index % 2 == 0 ? "ask \"ops\" before use" : "";
    tunnel.jumpHost = index % 4 == 0 ? "jump@bastion.example.com" : "";
    tunnel.createdAt = {kSomeDay + static_cast<double>(random() % 1000000000) / 1000.0};
    tunnel.lastConnectedAt = support::Date{tunnel.createdAt.secondsSinceReference + 86400.5};
    return tunnel;
}

} // namespace

std::vector<Tunnel> sampleTunnels(std::size_t count, std::string_view label) {
    std::mt19937_64 random(count); // the same catalogue in every run
    std::vector<Tunnel> tunnels;
    tunnels.reserve(count);
    for (std::size_t index = 0; index < count; ++index) {
        tunnels.push_back(sampleTunnel(index, label, random));
    }
    return tunnels;
}

} // namespace fernwick::benchmarks
