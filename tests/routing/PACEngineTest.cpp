// What a real engine makes of the script. It resolves names by the system, so only literals are asked for where
// a rule is about addresses.
#include "routing/PACBuilder.h"
#include "routing/RandomCatalogue.h"

#include <gtest/gtest.h>

#include <cstdarg>
#include <pacparser.h>
#include <set>

namespace fernwick {
namespace {

const std::string kProxy = "SOCKS5 127.0.0.1:1080; DIRECT";

// The engine, which there is once in a process.
class Engine {
public:
    explicit Engine(const std::string& script) {
        pacparser_set_error_printer([](const char* /*format*/, va_list /*values*/) { return 0; });
        ready_ = pacparser_init() == 1;
        accepted_ = ready_ && pacparser_parse_pac_string(script.c_str()) == 1;
    }
    Engine(const Engine&) = delete;
    Engine& operator=(const Engine&) = delete;
    ~Engine() {
        if (ready_) {
            pacparser_cleanup();
        }
    }

    [[nodiscard]] bool accepted() const { return accepted_; }

    // "none" when the script fails.
    [[nodiscard]] std::string proxyFor(const std::string& url, const std::string& host) const {
        const auto* const found =
            accepted_ ? pacparser_find_proxy(url.c_str(), host.c_str()) : nullptr; // the engine's own
        return found == nullptr ? "none" : found;
    }

private:
    bool ready_ = false;
    bool accepted_ = false;
};

std::string scriptOf(const ClashWorld& world) {
    return buildPAC(world.rules, world.proxies, world.ports);
}

struct Row {
    std::string name;
    std::vector<std::string> hosts, ports;
    std::string url, host;
    bool matches;
};

class PACEngine : public testing::TestWithParam<Row> {};

TEST_P(PACEngine, SendsWhatMatchesThroughTheTunnel) {
    ClashWorld world;
    auto& rule = world.addRule(RuleAction::tunnel, world.addTunnel("Công ty", "1080"));
    rule.name = "Văn phòng \"Hà Nội\"";
    rule.targetHosts = GetParam().hosts;
    rule.targetPorts = GetParam().ports;
    const Engine engine(scriptOf(world));
    EXPECT_EQ(engine.proxyFor(GetParam().url, GetParam().host), GetParam().matches ? kProxy : "DIRECT");
}

INSTANTIATE_TEST_SUITE_P(
    Rows, PACEngine,
    testing::Values(
        Row{"Host", {"a.example"}, {}, "http://a.example/", "a.example", true},
        Row{"HostIsNoSubdomain", {"a.example"}, {}, "http://b.a.example/", "b.a.example", false},
        Row{"HostInCapitals", {"a.example"}, {}, "http://A.example/", "A.example", false},
        Row{"OneOfSeveralHosts", {"a.example", "", "b.example"}, {}, "http://b.example/", "b.example", true},
        Row{"Subdomain", {"*.a.example"}, {}, "http://b.a.example/", "b.a.example", true},
        Row{"DomainItself", {"*.a.example"}, {}, "http://a.example/", "a.example", true},
        Row{"DomainThatEndsAlike", {"*.a.example"}, {}, "http://ba.example/", "ba.example", false},
        Row{"Pattern", {"ads*.x.example"}, {}, "http://ADS7.x.example/", "ADS7.x.example", true},
        Row{"PatternsDotIsADot", {"ads*.x.example"}, {}, "http://ads7-x.example/", "ads7-x.example", false},
        Row{"PatternIsWhole", {"ads*"}, {}, "http://my.ads/", "my.ads", false},
        Row{"Address", {"10.0.0.5"}, {}, "http://10.0.0.5/", "10.0.0.5", true},
        Row{"InNetwork", {"10.1.0.0/16"}, {}, "http://10.1.200.3/", "10.1.200.3", true},
        Row{"OutsideNetwork", {"10.1.0.0/16"}, {}, "http://10.2.0.3/", "10.2.0.3", false},
        Row{"NameInNetwork", {"127.0.0.0/8"}, {}, "http://localhost/", "localhost", true},
        Row{"FirstOfRange", {"10.0.0.1-10.0.1.9"}, {}, "http://10.0.0.1/", "10.0.0.1", true},
        Row{"LastOfRange", {"10.0.0.1-10.0.1.9"}, {}, "http://10.0.1.9/", "10.0.1.9", true},
        Row{"BehindRange", {"10.0.0.1-10.0.1.9"}, {}, "http://10.0.1.10/", "10.0.1.10", false},
        Row{"NameInRange", {"127.0.0.0-127.0.0.9"}, {}, "http://localhost/", "localhost", true},
        Row{"OneHyphenNeverMatches", {"127-0.0.1"}, {}, "http://127.0.0.1/", "127.0.0.1", false},
        Row{"Port", {}, {"8443"}, "https://a.example:8443/x", "a.example", true},
        Row{"PortWithoutPath", {}, {"8443"}, "https://a.example:8443", "a.example", true},
        Row{"PortBeforeAQuery", {}, {"8443"}, "https://a.example:8443?x", "a.example", true},
        Row{"LongerPort", {}, {"844"}, "https://a.example:8443/", "a.example", false},
        Row{"PortThatIsNotWritten", {}, {"443"}, "https://a.example/", "a.example", false},
        Row{"InPortRange", {}, {"8000-9000"}, "http://a.example:8080/", "a.example", true},
        Row{"BelowPortRange", {}, {"8000-9000"}, "http://a.example:7999/", "a.example", false},
        Row{"NoPortForARange", {}, {"1-65535"}, "http://a.example/", "a.example", false},
        Row{"HostOrPort", {"b.example"}, {"81"}, "http://a.example:81/", "a.example", true},
        Row{"NothingUsable", {" "}, {"300-abc"}, "http://a.example/", "a.example", true}),
    [](const auto& row) { return row.param.name; });

TEST(PACEngineOrder, TheFirstRuleThatMatchesDecides) {
    ClashWorld world;
    world.addRule(RuleAction::tunnel, world.addTunnel("down", "")).targetHosts = {"a.example"};
    world.addRule(RuleAction::block).targetHosts = {"a.example"};
    world.addRule(RuleAction::direct).targetHosts = {"b.example"};
    world.addRule(RuleAction::proxy, world.addProxy("p")).applications = {"Safari"};
    world.addRule(RuleAction::block).targetHosts = {"c.example"};
    world.proxies.back().proto = ProxyProtocol::https;
    const Engine engine(scriptOf(world));
    EXPECT_EQ(engine.proxyFor("http://a.example/", "a.example"), "PROXY 0.0.0.0:0");
    EXPECT_EQ(engine.proxyFor("http://b.example/", "b.example"), "DIRECT");
    EXPECT_EQ(engine.proxyFor("http://c.example/", "c.example"), "PROXY 127.0.0.1:1080; DIRECT");
}

TEST(PACEngineOrder, WithoutRulesEverythingGoesDirect) {
    EXPECT_EQ(Engine(scriptOf(ClashWorld())).proxyFor("http://a.example/", "a.example"), "DIRECT");
}

TEST(PACEngineText, QuoteInANameIsPartOfTheComment) {
    ClashWorld world;
    auto& rule = world.addRule(RuleAction::block);
    rule.name = R"("*/ } return 'x'; \)";
    rule.targetHosts = {"a.example"};
    const Engine engine(scriptOf(world));
    EXPECT_EQ(engine.proxyFor("http://b.example/", "b.example"), "DIRECT");
}

// No field on screen lets one in, but a file that is imported can.
TEST(PACEngineText, LineFeedInANameAndQuoteInAHostBreakTheScript) {
    ClashWorld world;
    world.addRule(RuleAction::block).name = "a\nb c";
    EXPECT_FALSE(Engine(scriptOf(world)).accepted());
    world.rules.back().name = "a";
    world.rules.back().targetHosts = {"x\"y"};
    EXPECT_FALSE(Engine(scriptOf(world)).accepted());
}

TEST(PACEngineText, AnyCatalogueGivesAScriptThatAnswers) {
    for (unsigned seed = 0; seed < 60 && !HasFailure(); ++seed) {
        RandomCatalogue random(seed);
        ClashWorld world;
        random.fill(world, 12);
        std::set<std::string> answers{"DIRECT", "PROXY 0.0.0.0:0"};
        for (const auto& [id, port] : world.ports) {
            answers.insert("SOCKS5 127.0.0.1:" + port + "; DIRECT");
            answers.insert("PROXY 127.0.0.1:" + port + "; DIRECT");
        }
        answers.insert({kProxy, "PROXY 127.0.0.1:1080; DIRECT"});
        const auto script = scriptOf(world);
        const Engine engine(script);
        const auto address = random.address();
        EXPECT_TRUE(answers.contains(engine.proxyFor("http://" + address + ":8080/", address))) << script;
    }
}

} // namespace
} // namespace fernwick
