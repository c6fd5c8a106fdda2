#include "routing/ClashManager.h"

#include "EngineWorld.h"
#include "support/FakeProcesses.h"
#include "support/FakeUserDefaults.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace fernwick {
namespace {

using namespace std::chrono_literals;
using Status = ClashEngineStatus;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr const char* kBrew = "/home/linuxbrew/.linuxbrew/bin/brew";

// A clock that counts how often it is asked: each generation asks once.
class CountingClock final : public platform::Clock {
public:
    explicit CountingClock(const platform::Clock& clock) : clock_(clock) {}
    [[nodiscard]] support::Date now() const override {
        ++asked;
        return clock_.now();
    }
    [[nodiscard]] std::chrono::nanoseconds uptime() const override { return clock_.uptime(); }
    void sleep(std::chrono::milliseconds duration) const override { clock_.sleep(duration); }

    mutable int asked = 0;

private:
    const platform::Clock& clock_;
};

struct ManagerWorld : EngineWorld {
    CountingClock generations{clock};
    fakes::FakeProcesses processes{dispatch};
    fakes::FakeUserDefaults defaults;
    TunnelStore tunnels{defaults, clock};
    ProxyRuleStore rules{defaults, dispatch};
    TunnelPortMap ports;
    std::unique_ptr<ClashManager> manager;

    // A manager that has done what it does at its start, unless told otherwise.
    explicit ManagerWorld(bool hasProgram = true, bool settled = true) : EngineWorld(hasProgram) {
        while (!tunnels.tunnels().empty()) {
            tunnels.remove(tunnels.tunnels().front().id);
        }
        manager = std::make_unique<ClashManager>(
            ClashManagerServices{.dispatch = dispatch,
                                 .clock = generations,
                                 .files = files,
                                 .processes = processes,
                                 .host = host,
                                 .engine = *engine,
                                 .rules = rules,
                                 .tunnelPortMap = [this] { return ports; },
                                 .brewCandidates = {kBrew, "/opt/homebrew/bin/brew", "/usr/local/bin/brew"},
                                 .print = [this](std::string_view line) { printed.emplace_back(line); }});
        manager->setTunnelStore(&tunnels);
        if (settled) {
            http.answer(200);
            dispatch.advance(10s);
            http.forget();
            http.answer(204);
            generations.asked = 0;
        }
    }

    // A tunnel in the catalogue, live on that port if one is given.
    Tunnel add(const std::string& name, const std::string& port = {}) {
        Tunnel tunnel;
        tunnel.id = support::Uuid::random();
        tunnel.name = name;
        tunnels.add(tunnel);
        if (!port.empty()) {
            ports[tunnel.id] = port;
        }
        return tunnel;
    }

    void schedule() const {
        manager->scheduleRebuild(tunnels.tunnels(), ports,
                                 std::make_shared<const RoutedRules>(rules.enabledRules(), rules.proxies()));
    }

    // The reloads so far.
    [[nodiscard]] auto reloads() const { return count("✅ Config reloaded via API"); }
    [[nodiscard]] auto applies() const { return count(std::string("Config written to: ") + kEngineConfig); }
};

TEST(ClashManager, FirstConfigurationIsAppliedASecondAfterTheStart) {
    ManagerWorld world(true, false);
    world.add("Office", "1080");
    world.dispatch.advance(999ms);
    EXPECT_EQ(world.generations.asked, 0);
    world.dispatch.advance(1ms);
    EXPECT_EQ(world.generations.asked, 1);
    EXPECT_THAT(world.writtenConfig(), HasSubstr("Office"));
    EXPECT_EQ(world.engine->status(), Status::starting());
    EXPECT_THAT(world.processes.children(), IsEmpty());
}

TEST(ClashManager, FirstTunnelWaitsTwoSecondsTheNextOne) {
    ManagerWorld world;
    world.add("first", "1080");
    world.schedule();
    world.dispatch.advance(1999ms);
    EXPECT_EQ(world.reloads(), 0);
    world.dispatch.advance(1ms);
    EXPECT_EQ(world.reloads(), 1);
    world.add("second", "1081");
    world.schedule();
    world.dispatch.advance(999ms);
    EXPECT_EQ(world.reloads(), 1);
    world.dispatch.advance(1ms);
    EXPECT_EQ(world.reloads(), 2);
}

TEST(ClashManager, SecondTunnelShortlyAfterTakesThePlaceOfTheFirst) {
    ManagerWorld world;
    world.add("first", "1080");
    world.schedule();
    world.dispatch.advance(500ms);
    world.add("second", "1081");
    world.schedule();
    world.dispatch.advance(999ms);
    EXPECT_EQ(world.generations.asked, 0);
    world.dispatch.advance(1ms);
    EXPECT_EQ(world.generations.asked, 1);
    EXPECT_THAT(world.writtenConfig(), HasSubstr("second"));
    world.dispatch.advance(10s);
    EXPECT_EQ(world.generations.asked, 1);
    EXPECT_EQ(world.reloads(), 1);
}

TEST(ClashManager, LastTunnelDownIsAppliedAfterASecondWithTunOff) {
    ManagerWorld world;
    const auto tunnel = world.add("only", "1080");
    world.schedule();
    world.dispatch.advance(2s);
    ASSERT_THAT(world.writtenConfig(), HasSubstr("tun:\n  enable: true\n"));
    world.ports.clear();
    world.schedule();
    world.dispatch.advance(1s);
    EXPECT_THAT(world.writtenConfig(), HasSubstr("tun:\n  enable: false\n"));
    EXPECT_EQ(world.reloads(), 2);
    EXPECT_EQ(world.engine->status(), Status::running()); // nothing stops it
    world.ports[tunnel.id] = "1080";
    world.schedule(); // the first one again
    world.dispatch.advance(1999ms);
    EXPECT_EQ(world.reloads(), 2);
    world.dispatch.advance(1ms);
    EXPECT_EQ(world.reloads(), 3);
}

TEST(ClashManager, PortOfATunnelThatIsNotInTheCatalogueCountsForNothing) {
    ManagerWorld world;
    world.ports[support::Uuid::random()] = "1080";
    world.add("down");
    world.schedule();
    world.dispatch.advance(1s);
    EXPECT_EQ(world.reloads(), 1);
}

TEST(ClashManager, HundredChangesWithinASecondAreOneGenerationAndOneApply) {
    ManagerWorld world;
    const auto before = world.applies();
    for (int number = 0; number < 100; ++number) {
        world.add("tunnel " + std::to_string(number), std::to_string(2000 + number));
        world.schedule();
        world.dispatch.advance(10ms);
    }
    EXPECT_EQ(world.generations.asked, 0);
    EXPECT_EQ(world.dispatch.pendingTimers(), 2U); // this one, and the engine's health
    world.dispatch.advance(10s);
    EXPECT_EQ(world.generations.asked, 1);
    EXPECT_EQ(world.applies(), before + 1);
    EXPECT_EQ(world.reloads(), 1);
    EXPECT_THAT(world.writtenConfig(), HasSubstr("tunnel 99"));
}

TEST(ClashManager, SwitchedOffItHeedsNothing) {
    ManagerWorld world;
    int told = 0;
    const auto subscription = world.manager->isEnabledChanged.connect([&] { ++told; });
    EXPECT_TRUE(world.manager->isEnabled());
    world.manager->setEnabled(false);
    EXPECT_EQ(told, 1);
    world.add("tunnel", "1080");
    world.schedule();
    world.dispatch.advance(10s);
    EXPECT_EQ(world.generations.asked, 0);
    EXPECT_EQ(world.engine->status(), Status::running());
    world.manager->setEnabled(true);
    world.schedule(); // the count was not updated: it is still the first
    world.dispatch.advance(1999ms);
    EXPECT_EQ(world.generations.asked, 0);
    world.dispatch.advance(1ms);
    EXPECT_EQ(world.generations.asked, 1);
}

TEST(ClashManager, EngineThatIsStartingIsStartedAgain) {
    ManagerWorld world(true, false);
    world.dispatch.advance(1500ms);
    ASSERT_EQ(world.engine->status(), Status::starting());
    world.add("tunnel", "1080");
    world.schedule();
    world.dispatch.advance(2s);
    EXPECT_EQ(world.calls("check"), 2);
    EXPECT_EQ(world.calls("restart"), 2);
    EXPECT_THAT(world.http.lines(), Each(HasSubstr("GET ")));
}

TEST(ClashManager, SameTextWithinASecondIsSkipped) {
    ManagerWorld world;
    const auto before = world.applies();
    world.dispatch.advance(1s); // the clock shows another second than that of the last text
    world.manager->rebuildNow();
    world.manager->rebuildNow();
    EXPECT_EQ(world.generations.asked, 2);
    EXPECT_EQ(world.printed.back(), "[ClashManager] Config unchanged, skipping rebuild");
    world.dispatch.runMain();
    EXPECT_EQ(world.applies(), before + 1);
    world.dispatch.advance(1s);
    world.manager->rebuildNow(); // only the line with the time differs
    world.dispatch.runMain();
    EXPECT_EQ(world.applies(), before + 2);
}

TEST(ClashManager, OnlyLiveTunnelsAreHandedOn) {
    ManagerWorld world;
    world.add("sleeping");
    world.add("awake", "1080");
    world.manager->rebuildNow();
    EXPECT_THAT(world.writtenConfig(), HasSubstr("awake"));
    EXPECT_THAT(world.writtenConfig(), testing::Not(HasSubstr("sleeping")));
}

TEST(ClashManager, RebuildReadsTheStoresAndTheSwitchedOnRules) {
    ManagerWorld world;
    auto proxy = ProxyConfig::create();
    proxy.name = "Relay";
    world.rules.addProxy(proxy);
    for (const bool enabled : {true, false}) {
        auto rule = AppRule::create();
        rule.isEnabled = enabled;
        rule.action = RuleAction::direct;
        rule.targetHosts = {enabled ? "on.example.com" : "off.example.com"};
        world.rules.addRule(rule);
    }
    world.manager->rebuildNow();
    EXPECT_THAT(world.writtenConfig(), HasSubstr("Relay"));
    EXPECT_THAT(world.writtenConfig(), HasSubstr("on.example.com"));
    EXPECT_THAT(world.writtenConfig(), testing::Not(HasSubstr("off.example.com")));
}

TEST(ClashManager, RebuildWithoutAStoreHasNoTunnel) {
    ManagerWorld world;
    world.add("tunnel", "1080");
    world.manager->setTunnelStore(nullptr);
    EXPECT_EQ(world.manager->tunnelStore(), nullptr);
    world.manager->rebuildNow();
    EXPECT_THAT(world.writtenConfig(), HasSubstr("tun:\n  enable: false\n"));
}

TEST(ClashManager, RebuildNeedsTheProgramOfTheEngineOnTheDisk) {
    ManagerWorld world;
    world.files.files.erase(kEngineProgram);
    world.dispatch.advance(1s);
    world.manager->rebuildNow();
    EXPECT_EQ(world.generations.asked, 0);
}

TEST(ClashManager, EngineStatusIsMirrored) {
    ManagerWorld world;
    EXPECT_EQ(world.manager->engineStatus(), Status::running());
    int told = 0;
    const auto subscription = world.manager->engineStatusChanged.connect([&] { ++told; });
    world.engine->stop();
    world.dispatch.runAll();
    EXPECT_EQ(world.manager->engineStatus(), Status::stopped());
    EXPECT_EQ(told, 1);
}

TEST(ClashManager, ShutdownCallsOffTheRebuildAndStopsTheEngine) {
    ManagerWorld world;
    world.add("tunnel", "1080");
    world.schedule();
    bool asked = false;
    world.manager->shutdown([&] { asked = true; });
    world.dispatch.runGlobal(); // the main thread may be waiting for this
    EXPECT_TRUE(asked);
    EXPECT_EQ(world.calls("terminate"), 1);
    world.dispatch.advance(1h);
    EXPECT_EQ(world.generations.asked, 0);
    EXPECT_EQ(world.engine->status(), Status::stopped());
}

TEST(ClashManager, QueuedWorkOfAManagerThatIsGoneComesToNothing) {
    ManagerWorld world(true, false);
    world.schedule();
    world.manager.reset();
    world.dispatch.advance(1h);
    EXPECT_EQ(world.generations.asked, 0);
    EXPECT_EQ(world.engine->status(), Status::stopped());
}

TEST(ClashManagerInstall, MissingProgramIsInstalledByHomebrew) {
    ManagerWorld world(false, false);
    world.files.files["/usr/local/bin/brew"] = {};
    world.files.files[kBrew] = {};
    world.dispatch.advance(999ms);
    EXPECT_THAT(world.processes.children(), IsEmpty());
    world.dispatch.advance(1ms);
    ASSERT_EQ(world.processes.launched().size(), 1U);
    const auto& request = world.processes.last().request();
    EXPECT_EQ(request.executable, kBrew);
    EXPECT_THAT(request.arguments, ElementsAre("install", "mihomo"));
    EXPECT_EQ(request.environment,
              (platform::Environment{{"PATH", "/opt/homebrew/bin:/usr/local/bin:/usr/bin:/bin"},
                                     {"HOME", "/home/someone"},
                                     {"HOMEBREW_NO_AUTO_UPDATE", "1"},
                                     {"HOMEBREW_NO_ANALYTICS", "1"}}));
    EXPECT_TRUE(request.discardsOutput);
    using Record = fakes::FakeDispatch::Record;
    EXPECT_THAT(world.dispatch.records(),
                Contains(Record{Record::Kind::global, platform::Priority::background, 0ms}));
}

TEST(ClashManagerInstall, WithoutHomeInTheEnvironmentTheAccountTellsIt) {
    ManagerWorld world(false, false);
    world.files.files["/opt/homebrew/bin/brew"] = {};
    world.host.environment.clear();
    world.host.home = "/home/account";
    world.dispatch.advance(1s);
    EXPECT_EQ(world.processes.last().request().environment.at("HOME"), "/home/account");
    EXPECT_EQ(world.processes.last().request().executable, "/opt/homebrew/bin/brew");
}

TEST(ClashManagerInstall, FreshProgramIsUsedFromTheNextStartOfTheApplication) {
    ManagerWorld world(false, false);
    world.files.files[kBrew] = {};
    world.dispatch.advance(1s);
    world.files.files[kEngineProgram] = {};
    world.processes.last().exit(0);
    const auto delayed = world.dispatch.pendingDelayed();
    world.dispatch.runAll();
    EXPECT_EQ(world.dispatch.pendingDelayed(), delayed + 1); // half a second until the rebuild
    world.dispatch.advance(10s);
    EXPECT_EQ(world.generations.asked, 0);
    EXPECT_EQ(world.engine->status(), Status::stopped());
}

TEST(ClashManagerInstall, ProgramThatCameBackIsUsedHalfASecondAfterTheInstallation) {
    ManagerWorld world(true, false);
    world.files.files[kBrew] = {};
    world.files.files.erase(kEngineProgram); // it was there when the engine was made
    world.dispatch.advance(1s);
    world.files.files[kEngineProgram] = {};
    world.processes.last().exit(0);
    world.dispatch.advance(499ms);
    EXPECT_EQ(world.generations.asked, 0);
    world.dispatch.advance(1ms);
    EXPECT_EQ(world.generations.asked, 1);
}

TEST(ClashManagerInstall, NoHomebrewIsSilent) {
    ManagerWorld world(false, false);
    world.printed.clear();
    world.dispatch.advance(1h);
    EXPECT_THAT(world.printed, IsEmpty());
    EXPECT_THAT(world.engine->logs(), IsEmpty());
    EXPECT_THAT(world.processes.children(), IsEmpty());
    EXPECT_THAT(world.administrator.lines(), IsEmpty());
    EXPECT_EQ(world.engine->status(), Status::stopped());
}

TEST(ClashManagerInstall, FailedInstallationIsSilent) {
    for (const bool launches : {true, false}) {
        ManagerWorld world(false, false);
        world.files.files[kBrew] = {};
        if (!launches) {
            world.processes.failNextLaunch({13, "Permission denied"});
        }
        world.printed.clear();
        world.dispatch.advance(1s);
        if (launches) {
            world.processes.last().exit(1);
        }
        world.dispatch.advance(1h);
        EXPECT_THAT(world.printed, IsEmpty());
        EXPECT_EQ(world.engine->status(), Status::stopped());
        EXPECT_EQ(world.dispatch.pendingDelayed(), 0U);
    }
}

TEST(ClashManagerInstall, StartWithoutAProgramTellsWhatIsMissing) {
    ManagerWorld world(false, false);
    world.dispatch.advance(1s);
    world.add("tunnel", "1080");
    world.schedule();
    world.dispatch.advance(2s);
    EXPECT_EQ(world.manager->engineStatus(),
              Status::error("mihomo binary not found. Bundle it at Contents/MacOS/mihomo or install via brew"));
}

TEST(ClashManagerInstall, ShutdownTerminatesAHomebrewThatRuns) {
    ManagerWorld world(false, false);
    world.files.files[kBrew] = {};
    world.dispatch.advance(1s);
    world.manager->shutdown();
    EXPECT_EQ(world.processes.last().terminations(), 1);
    world.dispatch.advance(1h);
    world.manager->shutdown(); // it has ended
    EXPECT_EQ(world.processes.last().terminations(), 1);
}

TEST(ClashManagerInstall, InstallationOutlivesItsManagerWithoutHarm) {
    ManagerWorld world(false, false);
    world.files.files[kBrew] = {};
    world.dispatch.advance(1s);
    world.manager.reset();
    world.processes.last().exit(0);
    world.dispatch.advance(1h);
    EXPECT_EQ(world.engine->status(), Status::stopped());
}

} // namespace
} // namespace fernwick
