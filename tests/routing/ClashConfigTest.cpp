#include "routing/ClashWorld.h"

#include <gtest/gtest.h>

namespace fernwick {
namespace {

// A tunnel, a proxy, and a rule for each of them and to block.
void fillOffice(ClashWorld& world) {
    const auto office = world.addTunnel("Office");
    const auto hongKong = world.addProxy("HK");
    world.proxies.back().address = "10.1.2.3";
    auto& corporate = world.addRule(RuleAction::tunnel, office);
    corporate.targetHosts = {"*.corp.example"};
    corporate.targetPorts = {"8443"};
    corporate.applications = {"Safari"};
    world.addRule(RuleAction::proxy, hongKong).targetHosts = {"10.0.0.0/8"};
    world.addRule(RuleAction::block).targetHosts = {"ads.example"};
}

// Each kind of proxy, names that collide, and each form of host and application.
void fillMixed(ClashWorld& world) {
    const auto home = world.addTunnel("my:\"srv\"", "1080");
    const auto second = world.addTunnel("my-'srv'", "1081");
    const auto down = world.addTunnel("Xa nhà", "");
    world.addProxy("HK");
    const auto secured = world.addProxy("HK");
    world.proxies.back().proto = ProxyProtocol::https;
    world.proxies.back().authentication = {true, "user", "pass"};
    const auto unnamed = world.addProxy("");
    world.proxies.back().proto = ProxyProtocol::socks4;
    const auto behind = world.addProxy("Behind", home);
    const auto behindDown = world.addProxy("Behind down", down);
    auto& forms = world.addRule(RuleAction::tunnel, second);
    forms.targetHosts = {"192.168.7.0/24", "10.0.0.1-10.0.0.6", " *.a.example ",
                         "ads*.b.example", "172.200.0.1",       "Tiếng.example"};
    forms.targetPorts = {"80", "8000-9000"};
    forms.applications = {"10.9.8.7", "10.0.0.0/8", "1.0.0.0-1.0.1.255", "com.apple.Safari"};
    world.addRule(RuleAction::proxy, secured).targetHosts = {"hk.example"};
    world.addRule(RuleAction::proxy, unnamed).targetHosts = {"unnamed.example"};
    world.addRule(RuleAction::proxy, behind).targetHosts = {"behind.example"};
    world.addRule(RuleAction::proxy, behindDown).targetHosts = {"never.example"};
    world.addRule(RuleAction::tunnel, down).targetHosts = {"never.example"};
    world.addRule(RuleAction::direct).applications = {"curl"};
    world.addRule(RuleAction::block).targetPorts = {"25"};
}

TEST(ClashConfig, OfficeIsWrittenByteForByte) {
    ClashWorld world;
    fillOffice(world);
    EXPECT_EQ(world.text(), goldenText("office.yaml"));
}

TEST(ClashConfig, NothingAtAllIsWrittenByteForByte) {
    const ClashWorld world;
    EXPECT_EQ(world.text(), goldenText("empty.yaml"));
}

TEST(ClashConfig, MixedIsWrittenByteForByte) {
    ClashWorld world;
    fillMixed(world);
    EXPECT_EQ(world.text(), goldenText("mixed.yaml"));
}

// The engine refuses two groups of one name, as `mixed` has them; this is the same catalogue without that.
TEST(ClashConfig, DistinctNamesAreWrittenByteForByte) {
    ClashWorld world;
    fillMixed(world);
    world.proxies[1].name = "HK secured";
    EXPECT_EQ(world.text(), goldenText("distinct.yaml"));
}

TEST(ClashConfig, TunIsOnWhileATunnelIsLive) {
    ClashWorld world;
    const auto id = world.addTunnel("t", "");
    world.addProxy("p");
    EXPECT_EQ(world.section("tun"), Lines{"  enable: false"});
    EXPECT_NE(world.text().find("\ntun:\n  enable: false\n\nproxies:\n"), std::string::npos);
    world.ports[id] = "1080";
    EXPECT_EQ(world.section("tun").front(), "  enable: true");
    EXPECT_EQ(world.values("tun", "    - "),
              (Lines{"any:53", "192.168.0.0/16", "10.0.0.0/8", "172.16.0.0/12", "100.64.0.0/10", "127.0.0.0/8",
                     "169.254.0.0/16", "224.0.0.0/4", "240.0.0.0/4"}));
    world.ports[id] = "";
    EXPECT_EQ(world.section("tun"), Lines{"  enable: false"});
}

TEST(ClashConfig, SaysWhenItWasMade) {
    ClashWorld world;
    world.clock.setNow({805087417.75});
    EXPECT_EQ(linesOf(world.text())[2], "# Generated: 2026-07-07T03:23:37Z");
}

} // namespace
} // namespace fernwick
