// The words of the window of proxies and rules, and what a search keeps.
#include "screens/routing/RoutingTexts.h"

#include "RoutingBench.h"
#include "screens/routing/PortText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace fernwick::tests {
namespace {

using testing::ElementsAre;

std::vector<std::string> found(const std::vector<AppRule>& rules, std::string_view search) {
    std::vector<std::string> names;
    for (const AppRule* rule : filteredRules(rules, search)) {
        names.push_back(rule->name);
    }
    return names;
}

TEST(RoutingTexts, AProxyIsFoundByNameAndAddressWhateverTheCase) {
    const std::vector proxies{proxyNamed("Office", "gate.example.org"), proxyNamed("Home", "10.0.0.1")};
    EXPECT_THAT(filteredProxies(proxies, "OFF"), ElementsAre(&proxies[0]));
    EXPECT_THAT(filteredProxies(proxies, "0.0.1"), ElementsAre(&proxies[1]));
    EXPECT_EQ(filteredProxies(proxies, "1080").size(), 0U);
    EXPECT_EQ(filteredProxies(proxies, "").size(), 2U);
}

TEST(RoutingTexts, ARuleIsFoundByPartOfAHostButNotByAnApplicationOrPort) {
    AppRule rule = ruleNamed("Mail", {"imap.example.org"});
    rule.applications = {"thunderbird"};
    rule.targetPorts = {"993"};
    EXPECT_THAT(found({rule}, "IMAP.ex"), ElementsAre("Mail"));
    EXPECT_THAT(found({rule}, "thunderbird"), ElementsAre());
    EXPECT_THAT(found({rule}, "993"), ElementsAre());
}

TEST(RoutingTexts, ASearchMatchesAcrossTwoHosts) {
    EXPECT_THAT(found({ruleNamed("both", {"a.example", "b.example"})}, "exampleb."), ElementsAre("both"));
}

TEST(RoutingTexts, ANewListIsInTheStoredOrder) {
    EXPECT_THAT(found({ruleNamed("z"), ruleNamed("a"), ruleNamed("m")}, ""), ElementsAre("z", "a", "m"));
}

TEST(RoutingTexts, HostsInAFewWords) {
    EXPECT_EQ(hostSummary(namedHosts(ruleNamed("", {}))), QStringLiteral("Any host"));
    EXPECT_EQ(hostSummary(namedHosts(ruleNamed("", {"", ""}))), QStringLiteral("Any host"));
    EXPECT_EQ(hostSummary(namedHosts(ruleNamed("", {"", "a.example"}))), QStringLiteral("a.example"));
    EXPECT_EQ(hostSummary(namedHosts(ruleNamed("", {"a.example", "b.example"}))),
              QStringLiteral("a.example +1 more"));
    EXPECT_EQ(hostSummary(namedHosts(ruleNamed("", {"a", "", "b", "c"}))), QStringLiteral("a +2 more"));
}

TEST(RoutingTexts, CountsAddAnSUnlessThereIsOne) {
    EXPECT_EQ(proxyCountText(0), QStringLiteral("0 proxys"));
    EXPECT_EQ(proxyCountText(1), QStringLiteral("1 proxy"));
    EXPECT_EQ(proxyCountText(2), QStringLiteral("2 proxys"));
    EXPECT_EQ(usedByTitle(1), QStringLiteral("Used by 1 Rule"));
    EXPECT_EQ(usedByTitle(2), QStringLiteral("Used by 2 Rules"));
}

TEST(RoutingTexts, EveryProtocolIsSpeltOut) {
    EXPECT_EQ(protocolText(ProxyProtocol::socks5), QStringLiteral("SOCKS Version 5"));
    EXPECT_EQ(protocolText(ProxyProtocol::socks4), QStringLiteral("SOCKS Version 4"));
    EXPECT_EQ(protocolText(ProxyProtocol::https), QStringLiteral("HTTPS"));
}

TEST(RoutingTexts, EveryActionAndProtocolHasItsColour) {
    EXPECT_EQ(actionColor(RuleAction::direct), &Palette::green);
    EXPECT_EQ(actionColor(RuleAction::proxy), &Palette::blue);
    EXPECT_EQ(actionColor(RuleAction::block), &Palette::red);
    EXPECT_EQ(actionColor(RuleAction::tunnel), &Palette::orange);
    EXPECT_EQ(protocolColor(ProxyProtocol::socks5), &Palette::blue);
    EXPECT_EQ(protocolColor(ProxyProtocol::socks4), &Palette::purple);
    EXPECT_EQ(protocolColor(ProxyProtocol::https), &Palette::green);
}

TEST(RoutingTexts, ATunnelThatIsGoneHasNoName) {
    const TunnelNames tunnels{{support::Uuid::random(), "web"}};
    EXPECT_EQ(tunnelName(tunnels, tunnels.front().id), QStringLiteral("web"));
    EXPECT_EQ(tunnelName(tunnels, support::Uuid::random()), std::nullopt);
    EXPECT_EQ(tunnelName(tunnels, std::nullopt), std::nullopt);
}

TEST(PortText, KeepsWhatCountsAsANumberInAnyScript) {
    EXPECT_EQ(numbersOnly(QStringLiteral("80a80")), QStringLiteral("8080"));
    EXPECT_EQ(numbersOnly(QStringLiteral(" -+1.5e")), QStringLiteral("15"));
    EXPECT_EQ(numbersOnly(QStringLiteral("٨½Ⅷx😀")), QStringLiteral("٨½Ⅷ"));
    EXPECT_EQ(numbersOnly(QString()), QString());
}

TEST(PortText, OnlyPlainDigitsAreAPort) {
    EXPECT_EQ(parsePort(QStringLiteral("0080")), 80);
    EXPECT_EQ(parsePort(QStringLiteral("٨٠")), std::nullopt);
    EXPECT_EQ(parsePort(QString()), std::nullopt);
    EXPECT_EQ(parsePort(QStringLiteral("99999999999999999999")), std::nullopt);
    EXPECT_EQ(parsePortInRange(QStringLiteral("0")), std::nullopt);
    EXPECT_EQ(parsePortInRange(QStringLiteral("65535")), 65535);
    EXPECT_EQ(parsePortInRange(QStringLiteral("65536")), std::nullopt);
}

} // namespace
} // namespace fernwick::tests
