// Reads the kernel's tables of interfaces and routes as rtnetlink sends them, and tells whether they lead out
// to a network. Pure: knows no socket and no clock. Threads: any, one at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <set>
#include <span>
#include <string_view>
#include <utility>

namespace fernwick::platform {

// The ways out: for each the address family and the number of the interface.
using NetworkWays = std::set<std::pair<int, std::uint32_t>>;

class NetworkPath {
public:
    // The tun device that the proxy engine makes when its configuration names none.
    static constexpr std::string_view kOwnTunDevice = "Meta";

    // How far the answer to one question (a dump, netlink(7)) has come.
    enum class Dump {
        more,      // the answer goes on
        done,      // it has come to its end
        disturbed, // to its end too, but the tables changed meanwhile: it is to be asked for anew
        failed     // the kernel said no, or nothing that can be understood
    };

    // Takes one datagram of an answer: RTM_NEWLINK or RTM_NEWROUTE messages (rtnetlink(7)). What is no part of
    // an answer is overlooked. The question's sequence number is `sequence`; messages of others are overlooked.
    [[nodiscard]] Dump take(std::span<const std::byte> datagram, std::uint32_t sequence);

    // The default routes of all tables but `local`, IPv4 and IPv6, that leave by an interface that is up and
    // has its carrier. Neither loopback nor the application's own tun device counts: what enters there has to
    // leave by another way. The tun device of a VPN counts: some clients leave no other default route.
    [[nodiscard]] NetworkWays ways() const;

private:
    struct Interface {
        bool isRunning = false; // up, with a carrier
        bool counts = true;     // leads off the machine
    };

    void takeInterface(std::span<const std::byte> payload);
    void takeRoute(std::span<const std::byte> payload);

    std::map<std::uint32_t, Interface> interfaces_;
    NetworkWays defaultRoutes_; // by interfaces in whatever state
    bool disturbed_ = false;    // by a change of the tables since the first datagram
};

} // namespace fernwick::platform
