#include "routing/AppRule.h"
#include "routing/ProxyConfig.h"
#include "support/RecordHash.h"
#include "support/RecordReader.h"
#include "support/RecordWriter.h"

#include <gtest/gtest.h>

namespace fernwick {
namespace {

using support::decodeList;
using support::encodeList;
using Texts = std::vector<std::string>;

constexpr const char* kProxy =
    R"({"id":"11111111-2222-3333-4444-AAAAAAAAAAAA","name":"New Proxy","address":"127.0.0.1","port":1080,)"
    R"("proto":"SOCKS5","authentication":{"enabled":false,"username":"","password":""},)"
    R"("useTargetHostname":false})";
constexpr const char* kRule =
    R"({"id":"11111111-2222-3333-4444-AAAAAAAAAAAA","name":"New Rule","isEnabled":true,"applications":[],)"
    R"("targetHosts":[],"targetPorts":[],"action":"Direct"})";

support::Uuid someID() {
    return *support::Uuid::parse("11111111-2222-3333-4444-AAAAAAAAAAAA");
}

ProxyConfig proxy() {
    ProxyConfig proxy;
    proxy.id = someID();
    return proxy;
}

AppRule rule() {
    AppRule rule;
    rule.id = someID();
    return rule;
}

std::string list(std::string_view object) {
    return "[" + std::string(object) + "]";
}

// The object, as a list, with `from` replaced by `to`.
std::string edited(std::string object, const std::string& from, const std::string& to) {
    const auto at = object.find(from);
    EXPECT_NE(at, std::string::npos) << from;
    object.replace(at, from.size(), to);
    return list(object);
}

TEST(ProxyConfig, NewOneHasTheDefaultsAndAnIdOfItsOwn) {
    auto made = ProxyConfig::create();
    EXPECT_NE(made.id, ProxyConfig::create().id);
    made.id = someID();
    EXPECT_EQ(made, proxy());
    EXPECT_EQ(encodeList(std::vector{made}), list(kProxy));
    EXPECT_EQ(decodeList<ProxyConfig>(list(kProxy)), std::vector{made});
}

TEST(ProxyConfig, AllKeysStandInTheOrderOfTheFields) {
    auto full = proxy();
    full.port = -5;
    full.proto = ProxyProtocol::https;
    full.authentication = {true, "u", "p\"w"};
    full.useTargetHostname = true;
    full.tunnelID = support::Uuid{};
    const std::string json =
        R"([{"id":"11111111-2222-3333-4444-AAAAAAAAAAAA","name":"New Proxy","address":"127.0.0.1","port":-5,)"
        R"("proto":"HTTPS","authentication":{"enabled":true,"username":"u","password":"p\"w"},)"
        R"("useTargetHostname":true,"tunnelID":"00000000-0000-0000-0000-000000000000"}])";
    EXPECT_EQ(encodeList(std::vector{full}), json);
    EXPECT_EQ(decodeList<ProxyConfig>(json), std::vector{full});
}

TEST(ProxyConfig, EffectiveNameIsTheNameOrAddressAndPort) {
    auto named = proxy();
    EXPECT_EQ(named.effectiveName(), "New Proxy");
    named.name = "";
    named.address = "10.0.0.1";
    named.port = 8080;
    EXPECT_EQ(named.effectiveName(), "10.0.0.1:8080");
    named.name = " ";
    EXPECT_EQ(named.effectiveName(), " ");
}

TEST(AppRule, NewOneHasTheDefaultsAndAnIdOfItsOwn) {
    auto made = AppRule::create();
    EXPECT_NE(made.id, AppRule::create().id);
    made.id = someID();
    EXPECT_EQ(made, rule());
    EXPECT_EQ(encodeList(std::vector{made}), list(kRule));
    EXPECT_EQ(decodeList<AppRule>(list(kRule)), std::vector{made});
}

TEST(AppRule, AllKeysStandInTheOrderOfTheFields) {
    AppRule full{someID(),        "n",     false, {"a", ""}, {"h"}, {"1-2"}, RuleAction::tunnel,
                 support::Uuid{}, someID()};
    const std::string json =
        R"([{"id":"11111111-2222-3333-4444-AAAAAAAAAAAA","name":"n","isEnabled":false,"applications":["a",""],)"
        R"("targetHosts":["h"],"targetPorts":["1-2"],"action":"Tunnel",)"
        R"("proxyID":"00000000-0000-0000-0000-000000000000",)"
        R"("tunnelID":"11111111-2222-3333-4444-AAAAAAAAAAAA"}])";
    EXPECT_EQ(encodeList(std::vector{full}), json);
    EXPECT_EQ(decodeList<AppRule>(json), std::vector{full});
}

TEST(AppRule, ListsAreWhatStandsBetweenTheSemicolons) {
    auto edited = rule();
    edited.setTargetPorts("80; 443;;  ");
    EXPECT_EQ(edited.targetPorts, (Texts{"80", "443", ""}));
    edited.setTargetPorts(";;");
    EXPECT_EQ(edited.targetPorts, Texts{});
    edited.setTargetHosts("\t*.corp.example ;a b; ");
    EXPECT_EQ(edited.targetHosts, (Texts{"*.corp.example", "a b", ""}));
    EXPECT_EQ(edited.targetPorts, Texts{});
    edited.setTargetHosts("");
    EXPECT_EQ(edited.targetHosts, Texts{});
}

struct Change {
    std::string name, from, to;
};

constexpr auto kRowName = [](const auto& row) { return row.param.name; };

class ProxyConfigRejects : public testing::TestWithParam<Change> {};

TEST_P(ProxyConfigRejects, TheWholeList) {
    const auto broken = edited(kProxy, GetParam().from, GetParam().to);
    EXPECT_FALSE(decodeList<ProxyConfig>(broken));
    EXPECT_FALSE(decodeList<ProxyConfig>(list(kProxy + ("," + broken.substr(1, broken.size() - 2)))));
}

INSTANTIATE_TEST_SUITE_P(
    Rows, ProxyConfigRejects,
    testing::Values(
        Change{"NoId", R"("id":"11111111-2222-3333-4444-AAAAAAAAAAAA",)", ""},
        Change{"NoName", R"("name":"New Proxy",)", ""}, Change{"NoAddress", R"("address":"127.0.0.1",)", ""},
        Change{"NoPort", R"("port":1080,)", ""}, Change{"NoProto", R"("proto":"SOCKS5",)", ""},
        Change{"NoAuthentication", R"("authentication":{"enabled":false,"username":"","password":""},)", ""},
        Change{"NoEnabled", R"("enabled":false,)", ""}, Change{"NoUsername", R"("username":"",)", ""},
        Change{"NoPassword", R"(,"password":"")", ""},
        Change{"NoUseTargetHostname", R"(,"useTargetHostname":false)", ""},
        Change{"PortAsText", "1080", R"("1080")"}, Change{"PortWithFraction", "1080", "1080.5"},
        Change{"ProtoInLowerCase", "SOCKS5", "socks5"}, Change{"ProtoUnknown", "SOCKS5", "HTTP"},
        Change{"FlagAsNumber", R"("useTargetHostname":false)", R"("useTargetHostname":0)"},
        Change{"TunnelIdMalformed", R"("port")", R"("tunnelID":"x","port")"}),
    kRowName);

class AppRuleRejects : public testing::TestWithParam<Change> {};

TEST_P(AppRuleRejects, TheWholeList) {
    EXPECT_FALSE(decodeList<AppRule>(edited(kRule, GetParam().from, GetParam().to)));
}

INSTANTIATE_TEST_SUITE_P(
    Rows, AppRuleRejects,
    testing::Values(Change{"NoId", R"("id":"11111111-2222-3333-4444-AAAAAAAAAAAA",)", ""},
                    Change{"NoName", R"("name":"New Rule",)", ""},
                    Change{"NoIsEnabled", R"("isEnabled":true,)", ""},
                    Change{"NoApplications", R"("applications":[],)", ""},
                    Change{"NoTargetHosts", R"("targetHosts":[],)", ""},
                    Change{"NoTargetPorts", R"("targetPorts":[],)", ""},
                    Change{"NoAction", R"(,"action":"Direct")", ""},
                    Change{"ActionInLowerCase", "Direct", "direct"}, Change{"ActionUnknown", "Direct", "Allow"},
                    Change{"PortsAsNumbers", R"("targetPorts":[])", R"("targetPorts":[80])"},
                    Change{"HostsAsText", R"("targetHosts":[])", R"("targetHosts":"a")"},
                    Change{"NullElement", R"("applications":[])", R"("applications":[null])"},
                    Change{"ProxyIdMalformed", R"("action")", R"("proxyID":"","action")"}),
    kRowName);

TEST(RoutingRecords, UnknownKeysAreIgnoredAndNullIsAnAbsentOptional) {
    EXPECT_EQ(decodeList<ProxyConfig>(edited(kProxy, R"("port")", R"("x":{},"tunnelID":null,"port")")),
              std::vector{proxy()});
    EXPECT_EQ(
        decodeList<AppRule>(edited(kRule, R"("action")", R"("x":[1],"proxyID":null,"tunnelID":null,"action")")),
        std::vector{rule()});
}

TEST(RoutingRecords, RawTextsAreOfferedInTheirOrder) {
    Texts texts;
    for (const auto& entry : rawTexts(ProxyProtocol{})) {
        texts.emplace_back(entry.text);
    }
    for (const auto& entry : rawTexts(RuleAction{})) {
        texts.emplace_back(entry.text);
    }
    EXPECT_EQ(texts, (Texts{"SOCKS5", "SOCKS4", "HTTPS", "Direct", "Proxy", "Block", "Tunnel"}));
}

TEST(RoutingRecords, DifferingInOneFieldIsDiffering) {
    auto otherProxy = proxy();
    otherProxy.authentication.password = "x";
    EXPECT_NE(otherProxy, proxy());
    EXPECT_NE(support::hashOf(otherProxy), support::hashOf(proxy()));
    auto otherRule = rule();
    otherRule.tunnelID = someID();
    EXPECT_NE(otherRule, rule());
    EXPECT_NE(support::hashOf(otherRule), support::hashOf(rule()));
}

} // namespace
} // namespace fernwick
