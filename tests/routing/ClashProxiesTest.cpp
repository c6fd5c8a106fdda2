#include "routing/ClashNames.h"
#include "routing/ClashWorld.h"

#include <gtest/gtest.h>

namespace fernwick {
namespace {

Lines proxyNames(const ClashWorld& world) {
    return world.values("proxies", "  - name: ");
}

Lines groupNames(const ClashWorld& world) {
    return world.values("proxy-groups", "  - name: ");
}

// The members of the group "PROXY".
Lines members(const ClashWorld& world) {
    Lines found;
    for (const auto& line : world.section("proxy-groups")) {
        if (line == "      - DIRECT") {
            break;
        }
        if (line.starts_with("      - ")) {
            found.push_back(line.substr(8));
        }
    }
    return found;
}

TEST(ClashNames, AreTrimmedAndLoseQuotesAndColons) {
    EXPECT_EQ(sanitizeName(R"(my:"srv")"), "my-'srv'");
    EXPECT_EQ(sanitizeName(" \t a b:\t"), "a b-");
    EXPECT_EQ(sanitizeName("10.0.0.1:8080"), "10.0.0.1-8080");
    EXPECT_EQ(sanitizeName("Máy chủ 🚀"), "Máy chủ 🚀");
    EXPECT_EQ(sanitizeName(" "), "");
}

TEST(ClashNames, ThatAreTakenCountFromTwo) {
    TakenNames names;
    EXPECT_EQ(names.takeFree("A"), "A");
    EXPECT_EQ(names.takeFree("A"), "A-2");
    EXPECT_TRUE(names.take("A-3"));
    EXPECT_FALSE(names.take("A-3"));
    EXPECT_EQ(names.takeFree("A"), "A-4");
    EXPECT_EQ(names.takeFree("A-2"), "A-2-2");
    EXPECT_EQ(names.takeFree("A"), "A-5");
    EXPECT_EQ(names.takeFree(""), "");
    EXPECT_EQ(names.takeFree(""), "-2");
    EXPECT_TRUE(names.contains("A-4"));
    EXPECT_FALSE(names.contains("A-6"));
}

TEST(ClashProxies, SecondTunnelOfANameTakesItsPortAlong) {
    ClashWorld world;
    world.addTunnel("A", "1080");
    const auto second = world.addTunnel("A", "1081");
    world.addTunnel("A", "1081");
    world.addTunnel("A", "1081");
    world.addRule(RuleAction::tunnel, second).targetPorts = {"80"};
    EXPECT_EQ(proxyNames(world), (Lines{R"("A")", R"("A-1081")", R"("A-1081-2")", R"("A-1081-3")"}));
    EXPECT_EQ(world.values("proxies", "    port: "), (Lines{"1080", "1081", "1081", "1081"}));
    EXPECT_EQ(world.ruleLines(), Lines{"  - DST-PORT,80,TUN_A-1081"});
}

TEST(ClashProxies, TunnelThatIsDownOrHasNoPortIsNowhere) {
    ClashWorld world;
    const auto down = world.addTunnel("A", "");
    const auto noPort = world.addTunnel("A", "");
    world.ports[noPort] = "";
    world.addTunnel("A", "1080");
    world.addProxy("down", down);
    world.addProxy("no port", noPort);
    EXPECT_EQ(proxyNames(world), Lines{R"("A")"});
    EXPECT_EQ(groupNames(world), (Lines{R"("PROXY")", R"("TUN_A")"}));
    EXPECT_EQ(members(world), Lines{R"("A")"});
}

TEST(ClashProxies, OddNameIsTheSameEverywhere) {
    ClashWorld world;
    const auto tunnel = world.addTunnel(R"(my:"srv")");
    const auto proxy = world.addProxy(R"( p:"1" )");
    world.addRule(RuleAction::tunnel, tunnel).targetPorts = {"1"};
    world.addRule(RuleAction::proxy, proxy).targetPorts = {"2"};
    EXPECT_EQ(proxyNames(world), (Lines{R"("my-'srv'")", R"("p-'1'")"}));
    EXPECT_EQ(members(world), (Lines{R"("my-'srv'")", R"("p-'1'")"}));
    EXPECT_EQ(groupNames(world), (Lines{R"("PROXY")", R"("TUN_my-'srv'")", R"("GRP_p-'1'")"}));
    EXPECT_EQ(world.ruleLines(), (Lines{"  - DST-PORT,1,TUN_my-'srv'", "  - DST-PORT,2,GRP_p-'1'"}));
}

TEST(ClashProxies, SecondProxyOfANameIsNoMemberAndHasTheSameGroup) {
    ClashWorld world;
    world.addProxy("HK");
    const auto second = world.addProxy("HK");
    world.addRule(RuleAction::proxy, second).targetPorts = {"80"};
    EXPECT_EQ(proxyNames(world), (Lines{R"("HK")", R"("HK-2")"}));
    EXPECT_EQ(members(world), Lines{R"("HK")"});
    EXPECT_EQ(world.section("proxy-groups"),
              (Lines{"  - name: \"PROXY\"", "    type: select", "    proxies:", "      - \"HK\"",
                     "      - DIRECT", "  - name: \"GRP_HK\"", "    type: select",
                     "    proxies:", "      - \"HK\"", "      - DIRECT", "  - name: \"GRP_HK\"",
                     "    type: select", "    proxies:", "      - \"HK\"", "      - DIRECT"}));
    EXPECT_EQ(world.ruleLines(), Lines{"  - DST-PORT,80,GRP_HK"});
}

TEST(ClashProxies, ProxyNamedAsATunnelIsRenamedAndItsGroupHoldsTheTunnel) {
    ClashWorld world;
    world.addTunnel("A");
    world.addProxy("A");
    EXPECT_EQ(proxyNames(world), (Lines{R"("A")", R"("A-2")"}));
    EXPECT_EQ(members(world), Lines{R"("A")"});
    EXPECT_EQ(groupNames(world), (Lines{R"("PROXY")", R"("TUN_A")", R"("GRP_A")"}));
}

TEST(ClashProxies, EachProtocolHasItsForm) {
    ClashWorld world;
    for (const auto& [proto, text] : rawTexts(ProxyProtocol{})) {
        world.addProxy(std::string(text));
        world.proxies.back().proto = proto;
        world.proxies.back().authentication.username = "not enabled";
    }
    EXPECT_EQ(world.section("proxies"),
              (Lines{"  - name: \"SOCKS5\"", "    type: socks5", "    server: 127.0.0.1", "    port: 1080",
                     "    udp: true", "  - name: \"SOCKS4\"", "    type: socks5", "    server: 127.0.0.1",
                     "    port: 1080", "    udp: true", "  - name: \"HTTPS\"", "    type: http",
                     "    server: 127.0.0.1", "    port: 1080", "    udp: false"}));
}

TEST(ClashProxies, AuthenticationGoesInUnquotedWhenItIsEnabled) {
    ClashWorld world;
    world.addProxy("");
    world.proxies.back().address = "proxy.example";
    world.proxies.back().port = -1;
    world.proxies.back().authentication = {true, "me", R"(p"w:#)"};
    EXPECT_EQ(world.section("proxies"),
              (Lines{"  - name: \"proxy.example--1\"", "    type: socks5", "    server: proxy.example",
                     "    port: -1", "    udp: true", "    username: me", "    password: p\"w:#"}));
}

TEST(ClashProxies, ProxyBehindATunnelHasItsPortAndNoCertificateLine) {
    ClashWorld world;
    const auto tunnel = world.addTunnel("T", "4444");
    const auto behind = world.addProxy("Behind", tunnel);
    world.proxies.back().proto = ProxyProtocol::https;
    world.proxies.back().authentication = {true, "u", "p"};
    world.addRule(RuleAction::proxy, behind).targetPorts = {"80"};
    EXPECT_EQ(world.section("proxies"),
              (Lines{"  - name: \"T\"", "    type: socks5", "    server: 127.0.0.1", "    port: 4444",
                     "    udp: false", "    skip-cert-verify: false", "  - name: \"Behind\"",
                     "    type: socks5", "    server: 127.0.0.1", "    port: 4444", "    udp: false"}));
    EXPECT_EQ(members(world), (Lines{R"("T")", R"("Behind")"}));
    EXPECT_EQ(groupNames(world), (Lines{R"("PROXY")", R"("TUN_T")", R"("GRP_Behind")"}));
    EXPECT_EQ(world.ruleLines(), Lines{"  - DST-PORT,80,GRP_Behind"});
}

TEST(ClashProxies, ProxyBehindATunnelIsNotRenamedButLeftOut) {
    ClashWorld world;
    const auto tunnel = world.addTunnel("T");
    world.addProxy("HK", tunnel);
    world.addProxy("HK", tunnel);
    world.addProxy("T", tunnel);
    world.addProxy("HK");
    EXPECT_EQ(proxyNames(world), (Lines{R"("T")", R"("HK")"}));
    EXPECT_EQ(world.values("proxies", "    udp: "), (Lines{"false", "true"}));
    EXPECT_EQ(members(world), (Lines{R"("T")", R"("HK")"}));
    EXPECT_EQ(groupNames(world), (Lines{R"("PROXY")", R"("TUN_T")", R"("GRP_HK")", R"("GRP_T")"}));
}

TEST(ClashProxies, MembersStandTunnelsFirstAndProxiesBehindTunnelsLast) {
    ClashWorld world;
    const auto tunnel = world.addTunnel("t2");
    world.addProxy("behind", tunnel);
    world.addProxy("direct");
    world.addTunnel("t1");
    EXPECT_EQ(members(world), (Lines{R"("t2")", R"("t1")", R"("direct")", R"("behind")"}));
    EXPECT_EQ(groupNames(world),
              (Lines{R"("PROXY")", R"("TUN_t2")", R"("TUN_t1")", R"("GRP_direct")", R"("GRP_behind")"}));
}

TEST(ClashProxies, PortOfATunnelThatIsNotInTheListCarriesItsProxiesButNoGroup) {
    ClashWorld world;
    const auto unlisted = support::Uuid::random();
    world.ports[unlisted] = "1080";
    world.addProxy("p", unlisted);
    EXPECT_EQ(proxyNames(world), Lines{R"("p")"});
    EXPECT_EQ(members(world), Lines{R"("p")"});
    EXPECT_EQ(groupNames(world), Lines{R"("PROXY")"});
    EXPECT_EQ(world.section("tun"), Lines{"  enable: false"});
}

TEST(ClashProxies, RuleWithoutALivingTargetAddsNothing) {
    ClashWorld world;
    const auto down = world.addTunnel("down", "");
    const auto behindDown = world.addProxy("behind", down);
    world.addRule(RuleAction::tunnel, down).targetHosts = {"10.0.0.1"};
    world.addRule(RuleAction::tunnel).targetHosts = {"10.0.0.1"};
    world.addRule(RuleAction::proxy, behindDown).targetHosts = {"10.0.0.1"};
    world.addRule(RuleAction::proxy).targetHosts = {"10.0.0.1"};
    world.addRule(RuleAction::proxy, support::Uuid::random()).targetHosts = {"10.0.0.1"};
    world.addTunnel("up");
    EXPECT_EQ(world.ruleLines(), Lines{});
    EXPECT_EQ(world.values("tun", "    - 10."), Lines{"0.0.0/8"});
}

TEST(ClashProxies, TargetIsTheFirstProxyOfTheId) {
    ClashWorld world;
    const auto id = world.addProxy("first");
    world.addProxy("second");
    world.proxies.back().id = id;
    world.addRule(RuleAction::proxy, id).targetPorts = {"80"};
    EXPECT_EQ(world.ruleLines(), Lines{"  - DST-PORT,80,GRP_first"});
}

} // namespace
} // namespace fernwick
