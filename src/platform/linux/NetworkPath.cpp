#include "platform/linux/NetworkPath.h"

#include <algorithm>
#include <cstring>
#include <linux/if_link.h>
#include <linux/netlink.h>
#include <linux/rtnetlink.h>
#include <net/if.h>
#include <optional>
#include <string_view>
#include <sys/socket.h>

namespace fernwick::platform {

namespace {

using Bytes = std::span<const std::byte>;

// Netlink aligns headers and payloads to four bytes (NLMSG_ALIGNTO, RTA_ALIGNTO).
std::size_t aligned(std::size_t size) {
    return (size + 3) & ~std::size_t{3};
}

// The structure at the start of some bytes; nothing when they are too few. Copied, since nothing vouches for
// the alignment.
template <class T>
std::optional<T> structureAt(Bytes bytes) {
    if (bytes.size() < sizeof(T)) {
        return std::nullopt;
    }
    T structure;
    std::memcpy(&structure, bytes.data(), sizeof(T));
    return structure;
}

Bytes behind(Bytes bytes, std::size_t size) {
    return bytes.subspan(std::min(aligned(size), bytes.size()));
}

// Cuts the next piece off the bytes: what it holds behind its header `T`, whose `length` counts itself too.
// Nothing when there is no whole piece left.
template <class T, class Length>
std::optional<std::pair<T, Bytes>> nextPiece(Bytes& bytes, Length length) {
    const auto header = structureAt<T>(bytes);
    if (!header || length(*header) < sizeof(T) || length(*header) > bytes.size()) {
        return std::nullopt;
    }
    const auto piece = bytes.first(length(*header));
    bytes = behind(bytes, piece.size());
    return std::pair{*header, behind(piece, sizeof(T))};
}

// Calls `visit` with type and value of each attribute.
template <class Visit>
void forEachAttribute(Bytes attributes, Visit visit) {
    while (const auto piece = nextPiece<rtattr>(attributes, [](const auto& each) { return each.rta_len; })) {
        visit(piece->first.rta_type & NLA_TYPE_MASK, piece->second);
    }
}

std::string_view textOf(Bytes value) {
    const std::string_view text(reinterpret_cast<const char*>(value.data()), value.size());
    return text.substr(0, text.find('\0'));
}

bool isTun(Bytes linkInfo) {
    bool tun = false;
    forEachAttribute(linkInfo, [&](int type, Bytes value) {
        tun = tun || (type == IFLA_INFO_KIND && textOf(value) == "tun");
    });
    return tun;
}

bool isUsable(unsigned flags) {
    return (flags & (RTNH_F_DEAD | RTNH_F_LINKDOWN)) == 0;
}

} // namespace

NetworkPath::Dump NetworkPath::take(Bytes datagram, std::uint32_t sequence) {
    while (const auto piece = nextPiece<nlmsghdr>(datagram, [](const auto& each) { return each.nlmsg_len; })) {
        const auto& [header, payload] = *piece;
        if (header.nlmsg_seq != sequence) {
            continue;
        }
        disturbed_ = disturbed_ || (header.nlmsg_flags & NLM_F_DUMP_INTR) != 0;
        switch (header.nlmsg_type) {
        case NLMSG_DONE:
            return disturbed_ ? Dump::disturbed : Dump::done;
        case NLMSG_ERROR:
            return Dump::failed;
        case RTM_NEWLINK:
            takeInterface(payload);
            break;
        case RTM_NEWROUTE:
            takeRoute(payload);
            break;
        default:
            break;
        }
    }
    return datagram.empty() ? Dump::more : Dump::failed;
}

void NetworkPath::takeInterface(Bytes payload) {
    const auto message = structureAt<ifinfomsg>(payload);
    if (!message) {
        return;
    }
    constexpr unsigned kRunning = IFF_UP | IFF_RUNNING;
    Interface link;
    link.isRunning = (message->ifi_flags & kRunning) == kRunning;
    bool tun = false;
    bool namedAsOurs = false;
    forEachAttribute(behind(payload, sizeof(*message)), [&](int type, Bytes value) {
        tun = tun || (type == IFLA_LINKINFO && isTun(value));
        namedAsOurs = namedAsOurs || (type == IFLA_IFNAME && textOf(value) == kOwnTunDevice);
    });
    link.counts = (message->ifi_flags & IFF_LOOPBACK) == 0 && !(tun && namedAsOurs);
    interfaces_[static_cast<std::uint32_t>(message->ifi_index)] = link;
}

void NetworkPath::takeRoute(Bytes payload) {
    const auto message = structureAt<rtmsg>(payload);
    if (!message || (message->rtm_family != AF_INET && message->rtm_family != AF_INET6) ||
        message->rtm_dst_len != 0 || message->rtm_type != RTN_UNICAST || message->rtm_table == RT_TABLE_LOCAL ||
        (message->rtm_flags & RTM_F_CLONED) != 0) {
        return;
    }
    const auto keep = [&](unsigned flags, std::uint32_t link) {
        if (isUsable(flags)) {
            defaultRoutes_.emplace(message->rtm_family, link);
        }
    };
    forEachAttribute(behind(payload, sizeof(*message)), [&](int type, Bytes value) {
        if (const auto number = structureAt<std::uint32_t>(value); type == RTA_OIF && number) {
            keep(message->rtm_flags, *number);
        }
        if (type == RTA_MULTIPATH) {
            while (const auto hop =
                       nextPiece<rtnexthop>(value, [](const auto& each) { return each.rtnh_len; })) {
                keep(hop->first.rtnh_flags, static_cast<std::uint32_t>(hop->first.rtnh_ifindex));
            }
        }
    });
}

NetworkWays NetworkPath::ways() const {
    NetworkWays ways;
    for (const auto& way : defaultRoutes_) {
        const auto found = interfaces_.find(way.second);
        if (found != interfaces_.end() && found->second.isRunning && found->second.counts) {
            ways.insert(way);
        }
    }
    return ways;
}

} // namespace fernwick::platform
