#include "platform/linux/NetworkPath.h"

#include <gtest/gtest.h>

#include <cstring>
#include <linux/if_link.h>
#include <linux/netlink.h>
#include <linux/rtnetlink.h>
#include <net/if.h>
#include <string>
#include <string_view>
#include <sys/socket.h>

namespace fernwick::platform {

namespace {

using Dump = NetworkPath::Dump;

constexpr std::uint32_t kSequence = 7;
constexpr unsigned kUp = IFF_UP | IFF_RUNNING;

template <class T>
std::string bytesOf(const T& structure) {
    std::string bytes(sizeof(T), '\0');
    std::memcpy(bytes.data(), &structure, sizeof(T));
    return bytes;
}

std::string padded(std::string bytes) {
    bytes.resize((bytes.size() + 3) & ~std::size_t{3});
    return bytes;
}

std::string attribute(int type, const std::string& value) {
    const rtattr header{static_cast<unsigned short>(sizeof(rtattr) + value.size()),
                        static_cast<unsigned short>(type)};
    return padded(bytesOf(header) + value);
}

std::string message(int type, const std::string& payload, int flags = NLM_F_MULTI,
                    std::uint32_t sequence = kSequence) {
    nlmsghdr header{};
    header.nlmsg_len = static_cast<std::uint32_t>(sizeof(header) + payload.size());
    header.nlmsg_type = static_cast<std::uint16_t>(type);
    header.nlmsg_flags = static_cast<std::uint16_t>(flags);
    header.nlmsg_seq = sequence;
    return padded(bytesOf(header) + payload);
}

std::string link(int number, unsigned flags, const std::string& kind = {}, const std::string& name = "eth0") {
    ifinfomsg body{};
    body.ifi_index = number;
    body.ifi_flags = flags;
    auto payload = bytesOf(body) + attribute(IFLA_IFNAME, name + '\0');
    if (!kind.empty()) {
        payload += attribute(IFLA_LINKINFO, attribute(IFLA_INFO_KIND, kind + '\0'));
    }
    return message(RTM_NEWLINK, payload);
}

rtmsg defaultRoute(int family = AF_INET) {
    rtmsg body{};
    body.rtm_family = static_cast<unsigned char>(family);
    body.rtm_type = RTN_UNICAST;
    body.rtm_table = RT_TABLE_MAIN;
    return body;
}

std::string route(const rtmsg& body, std::uint32_t link) {
    return message(RTM_NEWROUTE, bytesOf(body) + attribute(RTA_OIF, bytesOf(link)));
}

std::string done(int flags = NLM_F_MULTI) {
    return message(NLMSG_DONE, bytesOf(0), flags);
}

Dump take(NetworkPath& path, std::string_view datagram) {
    return path.take(std::as_bytes(std::span(datagram)), kSequence);
}

NetworkWays waysOf(const std::string& datagram) {
    NetworkPath path;
    EXPECT_EQ(take(path, datagram), Dump::more);
    return path.ways();
}

const NetworkWays kNone;
const NetworkWays kOne{{AF_INET, 2}};

} // namespace

TEST(NetworkPath, DefaultRouteOfEitherVersionIsAWay) {
    EXPECT_EQ(waysOf(link(2, kUp) + route(defaultRoute(), 2)), kOne);
    EXPECT_EQ(waysOf(link(2, kUp) + route(defaultRoute(AF_INET6), 2)), (NetworkWays{{AF_INET6, 2}}));
    EXPECT_EQ(waysOf(link(2, kUp) + route(defaultRoute(AF_UNIX), 2)), kNone);
}

TEST(NetworkPath, InterfaceHasToWork) {
    for (const unsigned flags : {0U, unsigned{IFF_UP}, unsigned{IFF_RUNNING}, kUp | IFF_LOOPBACK}) {
        EXPECT_EQ(waysOf(link(2, flags) + route(defaultRoute(), 2)), kNone) << flags;
    }
    EXPECT_EQ(waysOf(link(3, kUp) + route(defaultRoute(), 2)), kNone) << "another one";
}

TEST(NetworkPath, TheApplicationsOwnTunDeviceAloneDoesNotCount) {
    EXPECT_EQ(waysOf(link(2, kUp, "tun", "Meta") + route(defaultRoute(), 2)), kNone);
    EXPECT_EQ(waysOf(link(2, kUp, "tun", "tun0") + route(defaultRoute(), 2)), kOne); // a VPN's
    EXPECT_EQ(waysOf(link(2, kUp, "wireguard", "Meta") + route(defaultRoute(), 2)), kOne);
    EXPECT_EQ(waysOf(link(2, kUp, "tunnel", "Meta") + route(defaultRoute(), 2)), kOne);
    EXPECT_EQ(waysOf(link(2, kUp, "tun", "Meta1") + route(defaultRoute(), 2)), kOne);
}

TEST(NetworkPath, OnlyUsableDefaultRoutesCount) {
    struct Case {
        const char* name;
        void (*change)(rtmsg&);
        NetworkWays ways;
    };
    const Case cases[] = {
        {"as it is", [](rtmsg&) {}, kOne},
        {"another table", [](rtmsg& body) { body.rtm_table = 100; }, kOne},
        {"of a network", [](rtmsg& body) { body.rtm_dst_len = 1; }, kNone},
        {"table local", [](rtmsg& body) { body.rtm_table = RT_TABLE_LOCAL; }, kNone},
        {"unreachable", [](rtmsg& body) { body.rtm_type = RTN_UNREACHABLE; }, kNone},
        {"cloned", [](rtmsg& body) { body.rtm_flags = RTM_F_CLONED; }, kNone},
        {"dead", [](rtmsg& body) { body.rtm_flags = RTNH_F_DEAD; }, kNone},
        {"without a carrier", [](rtmsg& body) { body.rtm_flags = RTNH_F_LINKDOWN; }, kNone},
    };
    for (const auto& each : cases) {
        auto body = defaultRoute();
        each.change(body);
        EXPECT_EQ(waysOf(link(2, kUp) + route(body, 2)), each.ways) << each.name;
    }
}

TEST(NetworkPath, EachHopOfARouteIsAWay) {
    const auto hop = [](int link, unsigned char flags) {
        const std::string gateway = attribute(RTA_GATEWAY, "\xC0\x00\x02\x02");
        return bytesOf(
                   rtnexthop{static_cast<unsigned short>(sizeof(rtnexthop) + gateway.size()), flags, 0, link}) +
               gateway;
    };
    const auto hops = hop(2, 0) + hop(3, RTNH_F_LINKDOWN) + hop(4, 0);
    EXPECT_EQ(waysOf(link(2, kUp) + link(3, kUp) + link(4, kUp) +
                     message(RTM_NEWROUTE, bytesOf(defaultRoute()) + attribute(RTA_MULTIPATH, hops))),
              (NetworkWays{{AF_INET, 2}, {AF_INET, 4}}));
}

TEST(NetworkPath, OrderOfTheTablesDoesNotMatter) {
    EXPECT_EQ(waysOf(route(defaultRoute(), 2) + link(2, kUp)), kOne);
}

TEST(NetworkPath, AnswerEndsWithItsLastMessage) {
    NetworkPath path;
    EXPECT_EQ(take(path, link(2, kUp)), Dump::more);
    EXPECT_EQ(take(path, ""), Dump::more);
    EXPECT_EQ(take(path, done()), Dump::done);
    EXPECT_EQ(take(path, route(defaultRoute(), 2) + done()), Dump::done);
    EXPECT_EQ(path.ways(), kOne);
}

TEST(NetworkPath, DisturbanceIsTold) {
    NetworkPath path;
    EXPECT_EQ(take(path, message(RTM_NEWLINK, bytesOf(ifinfomsg{}), NLM_F_MULTI | NLM_F_DUMP_INTR)),
              Dump::more);
    EXPECT_EQ(take(path, done()), Dump::disturbed);
}

TEST(NetworkPath, MessagesOfOtherAnswersAreOverlooked) {
    NetworkPath path;
    EXPECT_EQ(take(path, message(NLMSG_DONE, bytesOf(0), 0, kSequence + 1)), Dump::more);
}

TEST(NetworkPath, RefusalAndRubbishFail) {
    NetworkPath path;
    EXPECT_EQ(take(path, message(NLMSG_ERROR, bytesOf(nlmsgerr{}))), Dump::failed);
    EXPECT_EQ(take(path, "rubbish"), Dump::failed);
    EXPECT_EQ(take(path, link(2, kUp).substr(0, 20)), Dump::failed);
    EXPECT_EQ(take(path, message(RTM_NEWROUTE, "short")), Dump::more);
}

} // namespace fernwick::platform
