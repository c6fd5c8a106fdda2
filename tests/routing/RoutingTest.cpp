#include "routing/Routing.h"

#include "EngineWorld.h"
#include "PACClient.h"
#include "support/FakeNetworkProxySettings.h"
#include "support/FakeProcesses.h"
#include "support/FakeUserDefaults.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>

namespace fernwick {
namespace {

using namespace std::chrono_literals;
using testing::Contains;
using testing::HasSubstr;
using testing::Not;

constexpr const char* kDirect = "function FindProxyForURL(url, host) { return \"DIRECT\"; }";

// The layer on fakes, with one tunnel and one rule that leads to it.
struct RoutingWorld : EngineWorld {
    fakes::FakeProcesses processes{dispatch};
    fakes::FakeUserDefaults defaults;
    fakes::FakeNetworkProxySettings settings;
    TunnelStore store{defaults, clock};
    ProxyRuleStore rules{defaults, dispatch};
    std::uint16_t port = freePort();
    TunnelPortMap live{{store.tunnels().front().id, "1080"}};
    Routing routing{RoutingServices{.engine = services(),
                                    .processes = processes,
                                    .proxySettings = settings,
                                    .rules = rules,
                                    .brewCandidates = {},
                                    .tunnelPortMap = [this] { return live; },
                                    .pacPort = port}};

    RoutingWorld() { addRule("office.example"); }

    void addRule(const std::string& host) {
        auto rule = AppRule::create();
        rule.action = RuleAction::tunnel;
        rule.tunnelID = live.begin()->first;
        rule.targetHosts = {host};
        rules.addRule(rule);
    }

    [[nodiscard]] std::string url() const { return "http://127.0.0.1:" + std::to_string(port) + "/proxy.pac"; }

    // The script that a client gets.
    [[nodiscard]] std::string script() const {
        PACClient client(port);
        client.send("GET /proxy.pac HTTP/1.1\r\n\r\n");
        const auto answer = client.receiveAll();
        return answer.substr(answer.find("\r\n\r\n") + 4);
    }
};

TEST(Routing, EngineComesToLifeWithTheFirstStore) {
    RoutingWorld world;
    world.routing.scheduleRebuild(world.store.tunnels(), world.live);
    world.dispatch.advance(5s);
    EXPECT_EQ(world.routing.engine(), nullptr);
    EXPECT_EQ(world.routing.manager(), nullptr);
    EXPECT_EQ(world.routing.tunnelStore(), nullptr);
    EXPECT_FALSE(world.files.exists(kEngineConfig));
    world.routing.setTunnelStore(world.store);
    const auto* manager = world.routing.manager();
    ASSERT_NE(manager, nullptr);
    EXPECT_EQ(world.routing.tunnelStore(), &world.store);
    world.routing.setTunnelStore(world.store);
    EXPECT_EQ(world.routing.manager(), manager);
}

TEST(Routing, ConfigurationFollowsTunnelsAndRules) {
    RoutingWorld world;
    world.routing.setTunnelStore(world.store);
    world.routing.scheduleRebuild(world.store.tunnels(), world.live);
    world.dispatch.advance(2s);
    ASSERT_TRUE(world.files.exists(kEngineConfig));
    EXPECT_THAT(world.files.files.at(kEngineConfig).bytes, HasSubstr("  - DOMAIN,office.example,TUN_"));
    EXPECT_EQ(world.files.files.at(kEngineConfig).mode, platform::kOwnerOnlyFile);
}

TEST(Routing, SettingsPointAtTheServedScript) {
    RoutingWorld world;
    world.routing.startPacServer();
    world.dispatch.runAll();
    EXPECT_EQ(world.script(), kDirect);
    world.routing.applySystemProxy(world.live);
    EXPECT_FALSE(world.settings.state("Wi-Fi").autoProxy);
    world.dispatch.runAll();
    EXPECT_TRUE(world.settings.state("Wi-Fi").autoProxy);
    EXPECT_EQ(world.settings.state("Wi-Fi").url, world.url());
    EXPECT_THAT(world.script(), HasSubstr("office.example"));
    world.routing.removeAllProxy("No active tunnels", false);
    EXPECT_FALSE(world.settings.state("Wi-Fi").autoProxy);
    EXPECT_EQ(world.script(), kDirect);
    world.routing.stopPacServer();
}

TEST(Routing, ScriptIsMadeOfTheRulesAtTheTimeOfTheRequest) {
    RoutingWorld world;
    world.routing.startPacServer();
    world.routing.applySystemProxy(world.live);
    world.addRule("later.example");
    world.dispatch.runAll();
    EXPECT_THAT(world.script(), Not(HasSubstr("later.example")));
    world.routing.applySystemProxy(world.live);
    world.dispatch.runAll();
    EXPECT_THAT(world.script(), HasSubstr("later.example"));
    auto proxy = ProxyConfig::create();
    world.rules.addProxy(proxy);
    auto rule = AppRule::create();
    rule.action = RuleAction::proxy;
    rule.proxyID = proxy.id;
    rule.targetHosts = {"byproxy.example"};
    world.rules.addRule(rule);
    world.routing.applySystemProxy(world.live);
    world.dispatch.runAll();
    EXPECT_THAT(world.script(), HasSubstr("byproxy.example"));
}

TEST(Routing, RequestThatComesLateDoesNotSwitchTheProxyOnAgain) {
    RoutingWorld world;
    world.routing.applySystemProxy(world.live);
    world.routing.removeAllProxy("No active tunnels", false); // overtakes it
    world.dispatch.runAll();
    EXPECT_FALSE(world.settings.state("Wi-Fi").autoProxy);
    EXPECT_THAT(world.settings.calls(), Not(Contains("auto Wi-Fi on")));
    world.routing.applySystemProxy(world.live);
    world.dispatch.runAll();
    EXPECT_TRUE(world.settings.state("Wi-Fi").autoProxy);
}

TEST(Routing, RequestsThatCameBeforeTheNewestCostNothing) {
    RoutingWorld world;
    for (int tunnel = 0; tunnel < 50; ++tunnel) {
        world.live[support::Uuid::random()] = "2000";
        world.routing.applySystemProxy(world.live);
    }
    world.routing.applySystemProxy(world.live);
    world.dispatch.runAll();
    EXPECT_EQ(world.settings.calls(),
              (Texts{"list", "url Wi-Fi " + world.url(), "auto Wi-Fi on", "socks Wi-Fi off"}));
}

TEST(Routing, ScriptFollowsTheTunnelsWhileTheEngineIsSwitchedOff) {
    RoutingWorld world;
    world.routing.setTunnelStore(world.store);
    world.dispatch.advance(1s);
    world.files.files.erase(kEngineConfig);
    world.routing.manager()->setEnabled(false);
    world.routing.startPacServer();
    world.routing.scheduleRebuild(world.store.tunnels(), world.live);
    world.routing.applySystemProxy(world.live);
    world.dispatch.advance(5s);
    EXPECT_FALSE(world.files.exists(kEngineConfig));
    EXPECT_TRUE(world.settings.state("Wi-Fi").autoProxy);
    EXPECT_THAT(world.script(), HasSubstr("office.example"));
}

TEST(Routing, AddressOfAKilledRunIsTakenBackAtTheStart) {
    RoutingWorld world;
    world.settings.setState("Wi-Fi", {.url = world.url(), .autoProxy = true});
    world.routing.startPacServer();
    world.dispatch.advance(499ms);
    EXPECT_TRUE(world.settings.calls().empty()) << "the first window has the processors for itself";
    EXPECT_TRUE(world.settings.state("Wi-Fi").autoProxy);
    world.dispatch.advance(1ms);
    EXPECT_FALSE(world.settings.state("Wi-Fi").autoProxy);
}

TEST(SystemProxyPath, LookAtTheStartKeepsOffWhatWasAskedForSince) {
    RoutingWorld world;
    const auto path =
        std::make_shared<SystemProxyPath>(world.settings, world.clock, world.port, [](std::string_view) {});
    path->start(world.dispatch);
    path->apply(world.dispatch, std::make_shared<const RoutedRules>(), world.live);
    world.dispatch.advance(1s);
    EXPECT_TRUE(world.settings.state("Wi-Fi").autoProxy);
    EXPECT_EQ(world.settings.state("Wi-Fi").url, world.url());
    path->stop();
}

TEST(SystemProxyPath, NewestRequestDecidesWhateverTheOrder) {
    RoutingWorld world;
    fakes::FakeDispatch slow;
    const auto path =
        std::make_shared<SystemProxyPath>(world.settings, world.clock, world.port, [](std::string_view) {});
    const auto rules = std::make_shared<const RoutedRules>();
    path->start(slow);
    path->apply(slow, rules, world.live);
    path->apply(world.dispatch, rules, {});
    world.dispatch.runAll();
    slow.advance(1s);
    EXPECT_FALSE(world.settings.state("Wi-Fi").autoProxy);
    EXPECT_THAT(world.settings.calls(), Not(Contains("auto Wi-Fi on")));
    path->stop();
}

TEST(Routing, EndWaitsUntilTheSystemTookTheStop) {
    RoutingWorld world;
    world.routing.stopEngine(); // there is none yet
    world.routing.setTunnelStore(world.store);
    std::atomic<bool> returned = false;
    std::thread end([&] {
        world.routing.stopEngine();
        returned = true;
    });
    EXPECT_TRUE(fakes::waitUntil([&] { return world.dispatch.runGlobal() > 0; }));
    EXPECT_TRUE(fakes::waitUntil([&] { return returned.load(); }));
    end.join();
    EXPECT_EQ(world.service.calls(), Texts{"terminate"});
}

} // namespace
} // namespace fernwick
