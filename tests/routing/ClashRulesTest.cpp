#include "routing/ClashWorld.h"
#include "routing/IPv4Text.h"

#include <gtest/gtest.h>

namespace fernwick {
namespace {

using Networks = std::vector<std::string>;

struct FormRow {
    std::string name, text;
    Lines lines;
};

constexpr auto kRowName = [](const auto& row) { return row.param.name; };

class ClashHost : public testing::TestWithParam<FormRow> {};

TEST_P(ClashHost, IsWrittenByItsForm) {
    ClashWorld world;
    world.addRule(RuleAction::direct).targetHosts = {GetParam().text};
    EXPECT_EQ(world.ruleLines(), GetParam().lines);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, ClashHost,
    testing::Values(
        FormRow{"Network", "10.0.0.0/8", {"  - IP-CIDR,10.0.0.0/8,DIRECT,no-resolve"}},
        FormRow{"AnythingWithASlash", "*.x-/y", {"  - IP-CIDR,*.x-/y,DIRECT,no-resolve"}},
        FormRow{"Range",
                "10.0.0.1 - 10.0.0.3",
                {"  - IP-CIDR,10.0.0.1/32,DIRECT,no-resolve", "  - IP-CIDR,10.0.0.2/31,DIRECT,no-resolve"}},
        FormRow{"RangeThatDoesNotParse", "1-2.example", {}},
        FormRow{"RangeUpsideDown", "10.0.0.2-10.0.0.1", {}},
        FormRow{"HyphenBehindALetter",
                "a-b.example",
                {"  - DOMAIN,a-b.example,DIRECT", "  - DOMAIN-SUFFIX,a-b.example,DIRECT"}},
        FormRow{"Subdomains", "*.corp.example", {"  - DOMAIN-SUFFIX,corp.example,DIRECT"}},
        FormRow{"SubdomainsOfAPattern", "*.*.x", {"  - DOMAIN-SUFFIX,*.x,DIRECT"}},
        FormRow{"SubdomainsOfNothing", "*.", {"  - DOMAIN-SUFFIX,,DIRECT"}},
        FormRow{"Pattern", ".*ads*.x*.", {"  - DOMAIN-KEYWORD,ads.x,DIRECT"}},
        FormRow{"PatternOfNothing", "*", {"  - DOMAIN-KEYWORD,,DIRECT"}},
        FormRow{"PatternOfDots", ".*.", {"  - DOMAIN-KEYWORD,,DIRECT"}},
        FormRow{"PatternWithANumberAndAHyphen", "1-*.x", {}},
        FormRow{"Address", "10.1.2.3", {"  - IP-CIDR,10.1.2.3/32,DIRECT,no-resolve"}},
        FormRow{"AddressWithMoreDots", ".10.1..2.3.", {"  - IP-CIDR,.10.1..2.3./32,DIRECT,no-resolve"}},
        FormRow{"NumberTooHigh",
                "10.1.2.256",
                {"  - DOMAIN,10.1.2.256,DIRECT", "  - DOMAIN-SUFFIX,10.1.2.256,DIRECT"}},
        FormRow{
            "Domain", "ads.example", {"  - DOMAIN,ads.example,DIRECT", "  - DOMAIN-SUFFIX,ads.example,DIRECT"}},
        FormRow{"DomainWithBlanks",
                " \tads.example ",
                {"  - DOMAIN,ads.example,DIRECT", "  - DOMAIN-SUFFIX,ads.example,DIRECT"}},
        FormRow{"IPv6", "::1", {"  - DOMAIN,::1,DIRECT", "  - DOMAIN-SUFFIX,::1,DIRECT"}},
        FormRow{"Empty", "", {}}, FormRow{"Blank", " \t", {}}),
    kRowName);

class ClashApplication : public testing::TestWithParam<FormRow> {};

TEST_P(ClashApplication, IsWrittenByItsForm) {
    ClashWorld world;
    world.addRule(RuleAction::block).applications = {GetParam().text};
    EXPECT_EQ(world.ruleLines(), GetParam().lines);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, ClashApplication,
    testing::Values(FormRow{"Address", "10.1.2.3", {"  - IP-CIDR,10.1.2.3/32,REJECT,no-resolve"}},
                    FormRow{"Network", "10.0.0.0/8", {"  - IP-CIDR,10.0.0.0/8,REJECT,no-resolve"}},
                    FormRow{"NumberAndSlash", "7/x", {"  - IP-CIDR,7/x,REJECT,no-resolve"}},
                    FormRow{"Path", "/usr/bin/curl", {"  - PROCESS-NAME,/usr/bin/curl,REJECT"}},
                    FormRow{"Range", "10.0.0.2-10.0.0.3", {"  - IP-CIDR,10.0.0.2/31,REJECT,no-resolve"}},
                    FormRow{"RangeThatDoesNotParse", "7-Zip", {}},
                    FormRow{"HyphenBehindALetter", "my-app", {"  - PROCESS-NAME,my-app,REJECT"}},
                    FormRow{
                        "BundleIdentifier", "com.apple.Safari", {"  - PROCESS-NAME,com.apple.Safari,REJECT"}},
                    FormRow{"Comma", "a,b", {"  - PROCESS-NAME,a,b,REJECT"}},
                    FormRow{"Blanks", " Google Chrome\t", {"  - PROCESS-NAME,Google Chrome,REJECT"}},
                    FormRow{"Asterisk", "*.x", {"  - PROCESS-NAME,*.x,REJECT"}}, FormRow{"Blank", " ", {}}),
    kRowName);

TEST(ClashRules, HostsStandBeforePortsAndApplicationsAndRulesInTheirOrder) {
    ClashWorld world;
    auto& first = world.addRule(RuleAction::block);
    first.applications = {"app", "", "app2"};
    first.targetPorts = {" 8000-9000 ", " ", "x"};
    first.targetHosts = {"*.b", "*.a"};
    world.addRule(RuleAction::direct).targetPorts = {"1"};
    EXPECT_EQ(world.ruleLines(),
              (Lines{"  - DOMAIN-SUFFIX,b,REJECT", "  - DOMAIN-SUFFIX,a,REJECT",
                     "  - DST-PORT,8000-9000,REJECT", "  - DST-PORT,x,REJECT", "  - PROCESS-NAME,app,REJECT",
                     "  - PROCESS-NAME,app2,REJECT", "  - DST-PORT,1,DIRECT"}));
}

TEST(ClashRules, RuleThatIsOffOrHasNothingInItAddsNothing) {
    ClashWorld world;
    auto& off = world.addRule(RuleAction::tunnel, world.addTunnel("t"));
    off.isEnabled = false;
    off.targetHosts = {"10.0.0.1"};
    world.addRule(RuleAction::block);
    EXPECT_EQ(world.ruleLines(), Lines{});
    EXPECT_EQ(world.values("tun", "    - 10."), Lines{"0.0.0/8"});
}

struct ExclusionRow {
    std::string name;
    std::vector<std::string> hosts, applications;
    std::string gone; // the first numbers of the private networks that are not excluded any more
};

class ClashExclusion : public testing::TestWithParam<ExclusionRow> {
protected:
    static Lines excludedWith(RuleAction action) {
        ClashWorld world;
        const auto tunnel = world.addTunnel("t");
        auto& rule = world.addRule(action, action == RuleAction::proxy ? world.addProxy("p") : tunnel);
        rule.targetHosts = GetParam().hosts;
        rule.applications = GetParam().applications;
        auto networks = world.values("tun", "    - ");
        networks.erase(networks.begin()); // of the DNS hijack
        return networks;
    }
};

const Networks kAllExcluded{"192.168.0.0/16", "10.0.0.0/8",     "172.16.0.0/12", "100.64.0.0/10",
                            "127.0.0.0/8",    "169.254.0.0/16", "224.0.0.0/4",   "240.0.0.0/4"};

TEST_P(ClashExclusion, LacksTheNetworksThatARuleRoutes) {
    Lines expected = kAllExcluded;
    std::erase_if(expected, [](const std::string& network) {
        return GetParam().gone.contains(network.substr(0, network.find('.')) + ";");
    });
    EXPECT_EQ(excludedWith(RuleAction::tunnel), expected);
    EXPECT_EQ(excludedWith(RuleAction::proxy), expected);
}

TEST_P(ClashExclusion, IsWholeWhenTheRuleIsDirectOrBlocks) {
    EXPECT_EQ(excludedWith(RuleAction::direct), kAllExcluded);
    EXPECT_EQ(excludedWith(RuleAction::block), kAllExcluded);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, ClashExclusion,
    testing::Values(ExclusionRow{"Address", {"10.1.2.3"}, {}, "10;"},
                    ExclusionRow{"Network", {" 192.168.3.0/24"}, {}, "192;"},
                    ExclusionRow{"Range", {"10.0.0.1-10.0.0.9"}, {}, "10;"},
                    ExclusionRow{"RangeThatDoesNotParse", {"192.168.1-x"}, {}, "192;"},
                    ExclusionRow{"Outside172Block", {"172.200.0.1"}, {}, "172;"},
                    ExclusionRow{"BeginningOfAnAddress", {"10", "192.168"}, {}, "10;192;"},
                    ExclusionRow{"BeginningWithASlash", {"10/8", "192.168/16"}, {}, ""},
                    ExclusionRow{"LongerNumber", {"100.1.2.3", "172x"}, {}, ""},
                    ExclusionRow{"RangeWithASlash", {"10.0.0.0/8-10.1.0.0", "10-/"}, {}, "10;"},
                    ExclusionRow{"DomainThatBeginsSo", {"10.example", "172.16.x"}, {}, "10;172;"},
                    ExclusionRow{
                        "OtherHosts", {"example", "8.8.8.8", "*.10.1", "127.0.0.1", ".10.1.2.3", ""}, {}, ""},
                    ExclusionRow{"All", {"10.0.0.1", "172.16.0.1"}, {"192.168.0.1"}, "10;172;192;"},
                    ExclusionRow{"ApplicationAddress", {}, {" 10.1.2.3 "}, "10;"},
                    ExclusionRow{"ApplicationNetwork", {}, {"172.16.0.0/12"}, "172;"},
                    ExclusionRow{"ApplicationRange", {}, {"10.0.0.1-10.0.0.9"}, ""},
                    ExclusionRow{"ApplicationBeginning", {}, {"10", "10.0", "192.168"}, ""},
                    ExclusionRow{"ApplicationNetworkTooShort", {}, {"10/8"}, ""},
                    ExclusionRow{"ApplicationName", {}, {"Safari", "10.app", ""}, ""}),
    kRowName);

TEST(IPv4Ranges, AreCoveredByTheFewestNetworks) {
    EXPECT_EQ(ipRangeToCIDRs("0.0.0.0-255.255.255.255"), Networks{"0.0.0.0/0"});
    EXPECT_EQ(ipRangeToCIDRs("10.0.0.0-10.0.0.255"), Networks{"10.0.0.0/24"});
    EXPECT_EQ(ipRangeToCIDRs("1.2.3.4-1.2.3.4"), Networks{"1.2.3.4/32"});
    EXPECT_EQ(ipRangeToCIDRs("10.0.0.1-10.0.0.6"),
              (Networks{"10.0.0.1/32", "10.0.0.2/31", "10.0.0.4/31", "10.0.0.6/32"}));
    EXPECT_EQ(ipRangeToCIDRs("255.255.255.254-255.255.255.255"), Networks{"255.255.255.254/31"});
    EXPECT_EQ(ipRangeToCIDRs("0.0.0.0-0.0.0.2"), (Networks{"0.0.0.0/31", "0.0.0.2/32"}));
    EXPECT_EQ(ipRangeToCIDRs("0.0.0.1-255.255.255.255")->size(), 32U);
    EXPECT_EQ(ipRangeToCIDRs("0.0.0.1-255.255.255.254")->size(), 62U);
}

TEST(IPv4Ranges, AreReadLooselyButHaveTwoEnds) {
    EXPECT_EQ(ipRangeToCIDRs(" 10.0.0.2\t-- 10.0.0.3 "), Networks{"10.0.0.2/31"});
    EXPECT_EQ(ipRangeToCIDRs("10.0.0.256-10.0.1.0"), Networks{"10.0.1.0/32"});
    for (const auto* const text : {"", "-", "10.0.0.1", "10.0.0.1-", "10.0.0.1-10.0.0.2-10.0.0.3",
                                   "10.0.0.2-10.0.0.1", "10.0.0-10.0.1", "1-2.example", "10.0.0.1-x"}) {
        EXPECT_FALSE(ipRangeToCIDRs(text)) << text;
    }
}

TEST(IPv4Ranges, LiteralsHaveFourNumbersAndNothingElse) {
    for (const auto* const text : {"1.2.3.4", "255.255.255.255", "1..2.3.4.", "001.2.3.4"}) {
        EXPECT_TRUE(isIPv4Literal(text)) << text;
    }
    for (const auto* const text :
         {"", "1.2.3", "1.2.3.4.5", "1.2.3.x.4", "1.2.3.256", "1.2.3.4/32", "1.2.3. 4"}) {
        EXPECT_FALSE(isIPv4Literal(text)) << text;
    }
}

} // namespace
} // namespace fernwick
