#include "routing/PACBuilder.h"

#include "routing/ClashWorld.h"

#include <gtest/gtest.h>

namespace fernwick {
namespace {

std::string scriptOf(const ClashWorld& world) {
    return buildPAC(world.rules, world.proxies, world.ports);
}

// What stands between the script's first lines and its last.
std::string bodyOf(const ClashWorld& world) {
    const auto script = scriptOf(world);
    const std::string begin = "function FindProxyForURL(url, host) {\n\n";
    const std::string end = "  return \"DIRECT\";\n}";
    EXPECT_TRUE(script.starts_with(begin) && script.ends_with(end)) << script;
    return script.substr(begin.size(), script.size() - begin.size() - end.size());
}

// The condition of a rule with these elements; empty for none.
std::string conditionOf(std::vector<std::string> hosts, std::vector<std::string> ports) {
    ClashWorld world;
    auto& rule = world.addRule(RuleAction::direct);
    rule.targetHosts = std::move(hosts);
    rule.targetPorts = std::move(ports);
    const auto body = bodyOf(world);
    const std::string begin = "  // Rule: New Rule\n  if (";
    const std::string end = ") { return \"DIRECT\"; }\n\n";
    if (body.starts_with(begin) && body.ends_with(end)) {
        return body.substr(begin.size(), body.size() - begin.size() - end.size());
    }
    EXPECT_EQ(body, "  // Rule: New Rule\n  return \"DIRECT\";\n\n");
    return "";
}

// One rule, and what it returns; empty when it is left out.
std::string statementOf(const ClashWorld& world) {
    auto body = bodyOf(world);
    const std::string begin = "  // Rule: New Rule\n  ";
    return body.starts_with(begin) ? body.substr(begin.size(), body.size() - begin.size() - 2) : body;
}

std::string rangeOf(const std::string& first, const std::string& last) {
    return "(function(){\n"
           "  var ip=dnsResolve(host)||host;\n"
           "  var s=\"" +
           first + "\".split(\".\"),e=\"" + last +
           "\".split(\".\"),h=ip.split(\".\");\n"
           "  if(h.length!==4)return false;\n"
           "  var hi=h[0]*16777216+h[1]*65536+h[2]*256+h[3]*1;\n"
           "  var si=s[0]*16777216+s[1]*65536+s[2]*256+s[3]*1;\n"
           "  var ei=e[0]*16777216+e[1]*65536+e[2]*256+e[3]*1;\n"
           "  return hi>=si&&hi<=ei;\n"
           "})()";
}

std::string portRangeOf(const std::string& first, const std::string& last) {
    return R"((function(){ var m=url.match(/:(\d+)/); if(!m)return false; )"
           "var p=parseInt(m[1]); return p>=" +
           first + "&&p<=" + last + "; })()";
}

// A tunnel, a rule for it, and one that blocks.
void fillWork(ClashWorld& world) {
    auto& work = world.addRule(RuleAction::tunnel, world.addTunnel("Office", "1080"));
    work.name = "Work";
    work.targetHosts = {"*.corp.example"};
    work.targetPorts = {"8443"};
    auto& ads = world.addRule(RuleAction::block);
    ads.name = "Ads";
    ads.targetHosts = {"ads.example"};
}

// Each form of host and port, and each kind of proxy.
void fillForms(ClashWorld& world) {
    const auto home = world.addTunnel("Home", "1081");
    const auto down = world.addTunnel("Down", "");
    auto& forms = world.addRule(RuleAction::tunnel, home);
    forms.name = "Mọi dạng";
    forms.targetHosts = {"10.0.0.5", "10.0.0.1 - 10.0.0.9", "10.1.0.0/12",    "my-site.example",
                         " ",        "ads*.x.example",      " *.a.example\t", "Tiếng.example"};
    forms.targetPorts = {"80", "8000-9000", "300-abc"};
    for (const auto proto : {ProxyProtocol::socks5, ProxyProtocol::socks4, ProxyProtocol::https}) {
        const auto id = world.addProxy("p");
        world.proxies.back().address = "proxy.example";
        world.proxies.back().proto = proto;
        world.proxies.back().authentication = {true, "user", "secret"};
        world.addRule(RuleAction::proxy, id).targetHosts = {"to.example"};
    }
    world.addRule(RuleAction::proxy, world.addProxy("behind", home)).targetHosts = {"behind.example"};
    world.addRule(RuleAction::proxy, world.addProxy("behind down", down)).targetHosts = {"down.example"};
    world.addRule(RuleAction::tunnel, down).targetHosts = {"never.example"};
    world.addRule(RuleAction::direct).applications = {"curl"};
}

TEST(PACBuilder, WorkIsWrittenByteForByte) {
    ClashWorld world;
    fillWork(world);
    EXPECT_EQ(scriptOf(world), goldenText("work.pac"));
}

TEST(PACBuilder, NothingAtAllIsWrittenByteForByte) {
    EXPECT_EQ(scriptOf(ClashWorld()), goldenText("empty.pac"));
}

TEST(PACBuilder, EveryFormIsWrittenByteForByte) {
    ClashWorld world;
    fillForms(world);
    EXPECT_EQ(scriptOf(world), goldenText("forms.pac"));
}

struct ElementRow {
    std::string name, element, condition;
};

constexpr auto kRowName = [](const auto& row) { return row.param.name; };

class PACHost : public testing::TestWithParam<ElementRow> {};

TEST_P(PACHost, IsWrittenByItsForm) {
    EXPECT_EQ(conditionOf({GetParam().element}, {}), GetParam().condition);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, PACHost,
    testing::Values(
        ElementRow{"PlainHost", "ads.example", "(host === \"ads.example\")"},
        ElementRow{"PlainAddress", "10.0.0.5", "(host === \"10.0.0.5\")"},
        ElementRow{"Blanks", " \tads.example ", "(host === \"ads.example\")"},
        ElementRow{"Range", "10.0.0.1-10.0.0.9", rangeOf("10.0.0.1", "10.0.0.9")},
        ElementRow{"RangeWithBlanks", "10.0.0.1 -\t10.0.0.9", rangeOf("10.0.0.1", "10.0.0.9")},
        ElementRow{"DomainWithOneHyphen", "my-site.example", rangeOf("my", "site.example")},
        ElementRow{"DomainWithTwoHyphens", "a-b-c.example", "(host === \"a-b-c.example\")"},
        ElementRow{"DomainWithADoubleHyphen", "xn--a.example", rangeOf("xn", "a.example")},
        ElementRow{"HyphenAtTheEnd", "a-", "(host === \"a-\")"},
        ElementRow{"SubdomainsWithOneHyphen", "*.my-site.example", rangeOf("*.my", "site.example")},
        ElementRow{"NetworkWithOneHyphen", "10.0.0.0-10.0.0.9/8", rangeOf("10.0.0.0", "10.0.0.9/8")},
        ElementRow{"Network", "10.0.0.0/8", "isInNet(dnsResolve(host)||host, \"10.0.0.0\", \"255.0.0.0\")"},
        ElementRow{"WidestNetwork", "0.0.0.0/0", "isInNet(dnsResolve(host)||host, \"0.0.0.0\", \"0.0.0.0\")"},
        ElementRow{"NarrowestNetwork", "10.0.0.1/32",
                   "isInNet(dnsResolve(host)||host, \"10.0.0.1\", \"255.255.255.255\")"},
        ElementRow{"OddNetwork", "x/19", "isInNet(dnsResolve(host)||host, \"x\", \"255.255.224.0\")"},
        ElementRow{"NetworkWithSlashes", "//10.0.0.0//8/",
                   "isInNet(dnsResolve(host)||host, \"10.0.0.0\", \"255.0.0.0\")"},
        ElementRow{"PrefixTooLong", "10.0.0.0/33", ""}, ElementRow{"PrefixBelowZero", "a-b-c/-1", ""},
        ElementRow{"PrefixNoNumber", "*.a.example/x", ""}, ElementRow{"ThreeParts", "10.0.0.0/8/8", ""},
        ElementRow{"OnePart", "10.0.0.0/", ""},
        ElementRow{"Subdomains", "*.corp.example",
                   "(dnsDomainIs(host, \".corp.example\") || host === \"corp.example\")"},
        ElementRow{"SubdomainsOfAPattern", "*.a*", "(dnsDomainIs(host, \".a*\") || host === \"a*\")"},
        ElementRow{"SubdomainsOfNothing", "*.", "(dnsDomainIs(host, \".\") || host === \"\")"},
        ElementRow{"Pattern", "ads*.x", R"((/^ads.*\.x$/i.test(host)))"},
        ElementRow{"PatternWithTwoHyphens", "a-b-*", R"((/^a-b-.*$/i.test(host)))"},
        ElementRow{"Anything", "*", R"((/^.*$/i.test(host)))"},
        ElementRow{"PatternOfSpecialCharacters", R"(*?+[](){}^$|\.x)",
                   R"((/^.*\?\+\[]\(\)\{\}\^\$\|\\\.x$/i.test(host)))"},
        ElementRow{"Empty", "", ""}, ElementRow{"Blank", " \t", ""}),
    kRowName);

class PACPort : public testing::TestWithParam<ElementRow> {};

TEST_P(PACPort, IsWrittenByItsForm) {
    EXPECT_EQ(conditionOf({}, {GetParam().element}), GetParam().condition);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, PACPort,
    testing::Values(ElementRow{"Port", "8443", R"((url.match(/:8443([\/\?]|$)/) !== null))"},
                    ElementRow{"Zeros", "0080", R"((url.match(/:80([\/\?]|$)/) !== null))"},
                    ElementRow{"Blanks", " 80\t", R"((url.match(/:80([\/\?]|$)/) !== null))"},
                    ElementRow{"NoPort", "70000", R"((url.match(/:70000([\/\?]|$)/) !== null))"},
                    ElementRow{"NoNumber", "http", ""}, ElementRow{"TwoNumbers", "80 443", ""},
                    ElementRow{"Range", "8000-9000", portRangeOf("8000", "9000")},
                    ElementRow{"RangeUpsideDown", "9-1", portRangeOf("9", "1")},
                    ElementRow{"RangeWithMoreHyphens", "-1--2-", portRangeOf("1", "2")},
                    ElementRow{"RangeWithAWordBetween", "1-x-2", portRangeOf("1", "2")},
                    ElementRow{"RangeWithBlanks", "80 - 90", ""}, ElementRow{"HalfARange", "300-abc", ""},
                    ElementRow{"ThreeNumbers", "1-2-3", ""}, ElementRow{"Negative", "-5", ""},
                    ElementRow{"Empty", "", ""}, ElementRow{"Blank", " ", ""}),
    kRowName);

TEST(PACBuilder, HostsComeBeforePortsAndEachIsAnAlternative) {
    EXPECT_EQ(conditionOf({"", "a", "b"}, {"x", "1", "2"}),
              "(host === \"a\")\n    || (host === \"b\")\n    || (url.match(/:1([\\/\\?]|$)/) !== null)\n"
              "    || (url.match(/:2([\\/\\?]|$)/) !== null)");
}

struct ProxyRow {
    std::string name;
    ProxyProtocol proto;
    std::string statement;
};

class PACProxy : public testing::TestWithParam<ProxyRow> {};

TEST_P(PACProxy, IsNamedByItsProtocolAndWithoutItsPassword) {
    ClashWorld world;
    world.addRule(RuleAction::proxy, world.addProxy("p"));
    world.proxies.back().address = "host";
    world.proxies.back().port = -70000;
    world.proxies.back().proto = GetParam().proto;
    world.proxies.back().authentication = {true, "user", "secret"};
    EXPECT_EQ(statementOf(world), GetParam().statement);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, PACProxy,
    testing::Values(ProxyRow{"Socks5", ProxyProtocol::socks5, "return \"SOCKS5 host:-70000; DIRECT\";"},
                    ProxyRow{"Socks4", ProxyProtocol::socks4, "return \"SOCKS5 host:-70000; DIRECT\";"},
                    ProxyRow{"Https", ProxyProtocol::https, "return \"PROXY host:-70000; DIRECT\";"}),
    kRowName);

TEST(PACBuilder, ProxyBehindATunnelIsReachedByTheTunnelsPort) {
    ClashWorld world;
    world.addRule(RuleAction::proxy, world.addProxy("p", world.addTunnel("t", "1085")));
    world.proxies.back().proto = ProxyProtocol::https;
    EXPECT_EQ(statementOf(world), "return \"PROXY 127.0.0.1:1085; DIRECT\";");
}

TEST(PACBuilder, ProxyBehindATunnelThatIsDownKeepsItsAddress) {
    ClashWorld world;
    world.addRule(RuleAction::proxy, world.addProxy("p", world.addTunnel("t", "")));
    world.proxies.back().address = "far.example";
    EXPECT_EQ(statementOf(world), "return \"SOCKS5 far.example:1080; DIRECT\";");
}

TEST(PACBuilder, RulesThatLeadNowhereAreLeftOut) {
    ClashWorld world;
    world.addProxy("not asked for");
    world.addRule(RuleAction::tunnel);
    world.addRule(RuleAction::tunnel, world.addTunnel("down", ""));
    world.addRule(RuleAction::proxy);
    world.addRule(RuleAction::proxy, support::Uuid::random());
    EXPECT_EQ(bodyOf(world), "");
}

TEST(PACBuilder, RulesThatAreOffAreLeftOut) {
    ClashWorld world;
    world.addRule(RuleAction::block).isEnabled = false;
    EXPECT_EQ(bodyOf(world), "");
}

TEST(PACBuilder, TheFirstOfProxiesWithOneIdCounts) {
    ClashWorld world;
    const auto id = world.addProxy("a");
    world.addProxy("b");
    world.proxies.back().id = id;
    world.proxies.back().port = 9;
    world.addRule(RuleAction::proxy, id);
    EXPECT_EQ(statementOf(world), "return \"SOCKS5 127.0.0.1:1080; DIRECT\";");
}

TEST(PACBuilder, RuleOfApplicationsAloneReturnsUnconditionally) {
    ClashWorld world;
    world.addRule(RuleAction::block).applications = {"Safari"};
    EXPECT_EQ(statementOf(world), "return \"PROXY 0.0.0.0:0\";");
}

TEST(PACBuilder, RuleWhosePortDoesNotReadReturnsUnconditionally) {
    ClashWorld world;
    world.addRule(RuleAction::direct).targetPorts = {"300-abc"};
    EXPECT_EQ(statementOf(world), "return \"DIRECT\";");
}

TEST(PACBuilder, TextsOfTheUserGoInAsTheyAre) {
    ClashWorld world;
    auto& rule = world.addRule(RuleAction::direct);
    rule.name = "a\"b\nc";
    rule.targetHosts = {"x\"y"};
    EXPECT_EQ(bodyOf(world), "  // Rule: a\"b\nc\n  if ((host === \"x\"y\")) { return \"DIRECT\"; }\n\n");
}

} // namespace
} // namespace fernwick
