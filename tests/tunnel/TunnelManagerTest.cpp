#include "tunnel/TunnelManager.h"

#include "platform/AppNotifications.h"
#include "tunnel/TunnelWorld.h"

#include <gtest/gtest.h>

namespace fernwick {
namespace {

using namespace std::chrono_literals;
using fakes::TunnelWorld;
using Messages = std::vector<std::string>;

constexpr const char* kProxyOff = "🔴 System proxy đã tắt (không còn tunnel nào active)";

TEST(TunnelManager, StartsThePacServerAtCreation) {
    TunnelWorld world;
    EXPECT_EQ(world.routing.calls, Messages{"startPacServer"});
}

TEST(TunnelManager, ConnectWritesItsLinesInOrder) {
    TunnelWorld world;
    const auto tunnel = world.add();
    world.processes.setNextPid(4711);
    world.bringUp(tunnel);
    EXPECT_EQ(world.messages(tunnel),
              (Messages{"Connecting to ubuntu@example.com:22...",
                        "Executing: /usr/bin/ssh -N -o ServerAliveInterval=60 -o ServerAliveCountMax=3 -o "
                        "ConnectTimeout=15 -o StrictHostKeyChecking=accept-new -o IdentityAgent=none -p 22 -o "
                        "ExitOnForwardFailure=yes -L 127.0.0.1:8080:localhost:8080 ubuntu@example.com",
                        "SSH process started (PID: 4711)", "Tunnel is up localhost:8080 -> example.com"}));
    EXPECT_EQ(world.line(tunnel, "Connecting")->level, LogLevel::info);
    EXPECT_EQ(world.line(tunnel, "Tunnel is up")->level, LogLevel::success);
}

TEST(TunnelManager, StatusGoesFromNoneThroughConnectingToConnected) {
    TunnelWorld world;
    const auto tunnel = world.add();
    EXPECT_EQ(world.manager.status(tunnel.id), std::nullopt);
    EXPECT_FALSE(world.manager.isActive(tunnel.id));
    world.launch(tunnel);
    EXPECT_EQ(world.manager.status(tunnel.id), TunnelStatus::connecting());
    world.dispatch.advance(1499ms);
    EXPECT_EQ(world.manager.status(tunnel.id), TunnelStatus::connecting());
    world.dispatch.advance(1ms);
    EXPECT_EQ(world.manager.status(tunnel.id), TunnelStatus::connected());
    EXPECT_TRUE(world.manager.isActive(tunnel.id));
}

TEST(TunnelManager, StatusIsAssignedOnTheMainQueueAndNeverInPlace) {
    TunnelWorld world;
    const auto tunnel = world.add();
    world.manager.connect(tunnel, world.store);
    EXPECT_EQ(world.manager.status(tunnel.id), std::nullopt);
    world.dispatch.runMain();
    EXPECT_EQ(world.manager.status(tunnel.id), TunnelStatus::connecting());
    world.manager.disconnect(tunnel.id);
    EXPECT_EQ(world.manager.status(tunnel.id), TunnelStatus::connecting());
}

TEST(TunnelManager, ConnectTwiceStartsOneChild) {
    TunnelWorld world;
    const auto tunnel = world.add();
    world.manager.connect(tunnel, world.store);
    world.manager.connect(tunnel, world.store);
    world.dispatch.runAll();
    world.manager.connect(tunnel, world.store);
    world.dispatch.advance(2s);
    EXPECT_EQ(world.processes.launched().size(), 1U);
}

TEST(TunnelManager, ConnectedSetsPortAndDateAndTellsTheRouting) {
    TunnelWorld world;
    world.routing.setTunnelStore(world.store);
    const auto tunnel = world.add();
    world.bringUp(tunnel);
    EXPECT_EQ(world.manager.tunnelPortMap(), (TunnelPortMap{{tunnel.id, "8080"}}));
    EXPECT_EQ(world.routing.appliedPorts, world.manager.tunnelPortMap());
    EXPECT_EQ(world.routing.rebuiltPorts, world.manager.tunnelPortMap());
    ASSERT_EQ(world.routing.rebuiltTunnels.size(), 1U); // the sample of a first start is not live
    EXPECT_EQ(world.routing.rebuiltTunnels.front().id, tunnel.id);
    EXPECT_EQ(world.store.find(tunnel.id)->lastConnectedAt, world.clock.now());
}

TEST(TunnelManager, WithoutARoutedStoreTheEngineHearsOfNoTunnels) {
    TunnelWorld world;
    world.bringUp(world.add());
    EXPECT_EQ(world.routing.count("applySystemProxy 1"), 1);
    EXPECT_EQ(world.routing.count("scheduleRebuild 0 tunnels, 1 ports"), 1);
}

TEST(TunnelManager, EmptyLocalPortNeverEntersThePortMap) {
    TunnelWorld world;
    const auto tunnel = world.add("");
    world.bringUp(tunnel);
    EXPECT_EQ(world.manager.status(tunnel.id), TunnelStatus::connected());
    EXPECT_TRUE(world.manager.tunnelPortMap().empty());
    EXPECT_NE(world.line(tunnel, "Tunnel is up localhost: -> example.com"), nullptr);
}

TEST(TunnelManager, ConfirmationReplacesTheWholeRecordByTheOneThatWasLaunched) {
    TunnelWorld world;
    const auto tunnel = world.add();
    world.launch(tunnel);
    auto edited = tunnel;
    edited.name = "Edited meanwhile";
    world.store.update(edited);
    world.dispatch.advance(1500ms);
    EXPECT_EQ(world.store.find(tunnel.id)->name, "Test");
}

TEST(TunnelManager, TunnelDeletedBeforeConfirmationIsNotBroughtBack) {
    TunnelWorld world;
    const auto tunnel = world.add();
    world.launch(tunnel);
    world.store.remove(tunnel.id);
    world.dispatch.advance(1500ms);
    EXPECT_EQ(world.store.find(tunnel.id), nullptr);
}

TEST(TunnelManager, FailedLaunchIsToldAndNotRetried) {
    TunnelWorld world;
    auto tunnel = world.add();
    tunnel.reconnectOnFailure = true;
    world.processes.failNextLaunch({2, "No such file or directory"});
    int announced = 0;
    const auto subscription = world.store.changed.connect([&] { ++announced; });
    world.manager.connect(tunnel, world.store);
    world.dispatch.advance(60s);
    EXPECT_EQ(world.manager.status(tunnel.id), TunnelStatus::error("No such file or directory"));
    const auto* line = world.line(tunnel, "Failed to launch SSH: No such file or directory");
    ASSERT_NE(line, nullptr);
    EXPECT_EQ(line->level, LogLevel::error);
    EXPECT_EQ(announced, 1);
    EXPECT_EQ(world.processes.launched().size(), 0U);
    EXPECT_EQ(world.manager.activeProcess(tunnel.id), nullptr);
}

TEST(TunnelManager, AfterAFailedLaunchTheUserCanTryAgain) {
    TunnelWorld world;
    const auto tunnel = world.add();
    world.processes.failNextLaunch({2, "No such file or directory"});
    world.manager.connect(tunnel, world.store);
    world.dispatch.runAll();
    world.bringUp(tunnel);
    EXPECT_EQ(world.manager.status(tunnel.id), TunnelStatus::connected());
}

struct ExitRow {
    std::string name;
    int status;
    LogLevel level;
    std::string line;
};

class TunnelManagerExit : public testing::TestWithParam<ExitRow> {};

TEST_P(TunnelManagerExit, IsToldByItsStatus) {
    TunnelWorld world;
    const auto tunnel = world.add();
    world.bringUp(tunnel).exit(GetParam().status);
    world.dispatch.runAll();
    EXPECT_EQ(world.messages(tunnel).back(), GetParam().line);
    EXPECT_EQ(world.line(tunnel, "Process exited")->level, GetParam().level);
    EXPECT_EQ(world.manager.status(tunnel.id), TunnelStatus::disconnected());
    EXPECT_EQ(world.manager.activeProcess(tunnel.id), nullptr);
}

INSTANTIATE_TEST_SUITE_P(
    Table, TunnelManagerExit,
    testing::Values(ExitRow{"NetworkError", 255, LogLevel::error,
                            "Process exited (code: 255) — Network error or host unreachable"},
                    ExitRow{"GeneralError", 1, LogLevel::error, "Process exited (code: 1) — General SSH error"},
                    ExitRow{"Interrupted", 130, LogLevel::error, "Process exited (code: 130) — Interrupted"},
                    ExitRow{"Clean", 0, LogLevel::info, "Process exited (code: 0)"},
                    ExitRow{"Killed", 9, LogLevel::error, "Process exited (code: 9)"},
                    ExitRow{"Other", 127, LogLevel::error, "Process exited (code: 127)"}),
    [](const auto& row) { return row.param.name; });

TEST(TunnelManager, ExitWithinTheFirstMomentsNeverReachesConnected) {
    TunnelWorld world;
    const auto tunnel = world.add();
    auto& child = world.launch(tunnel);
    world.dispatch.advance(1400ms);
    child.exit(255);
    world.dispatch.advance(10s);
    EXPECT_EQ(world.manager.status(tunnel.id), TunnelStatus::disconnected());
    EXPECT_EQ(world.line(tunnel, "Tunnel is up"), nullptr);
    EXPECT_TRUE(world.manager.tunnelPortMap().empty());
}

TEST(TunnelManager, ExitTellsTheSystemProxyButNotTheEngine) {
    TunnelWorld world;
    const auto tunnel = world.add();
    auto& child = world.bringUp(tunnel);
    world.routing.calls.clear();
    int announced = 0;
    const auto subscription = world.store.changed.connect([&] { ++announced; });
    child.exit(255);
    world.dispatch.runAll();
    EXPECT_EQ(world.routing.calls, Messages{"applySystemProxy 0"});
    EXPECT_TRUE(world.manager.tunnelPortMap().empty());
    EXPECT_EQ(announced, 1);
}

TEST(TunnelManager, DisconnectStopsTheChildAndSaysSo) {
    TunnelWorld world;
    const auto tunnel = world.add();
    world.processes.setNextPid(4711);
    auto& child = world.bringUp(tunnel);
    world.manager.disconnect(tunnel.id);
    world.dispatch.advance(1s);
    EXPECT_EQ(child.terminations(), 1);
    EXPECT_FALSE(child.isRunning());
    EXPECT_EQ(world.manager.status(tunnel.id), TunnelStatus::idle());
    const auto* stopped = world.line(tunnel, "■ Tunnel stopped (PID: 4711)");
    ASSERT_NE(stopped, nullptr);
    EXPECT_EQ(stopped->level, LogLevel::info);
    EXPECT_EQ(world.line(tunnel, "Process exited (code: "), nullptr);
}

TEST(TunnelManager, ChildThatIgnoresTheRequestIsKilledTwiceASecondLater) {
    TunnelWorld world;
    world.processes.setExitOnTerminate(std::nullopt);
    const auto tunnel = world.add();
    auto& child = world.bringUp(tunnel);
    world.manager.disconnect(tunnel.id);
    world.dispatch.advance(999ms);
    EXPECT_TRUE(child.isRunning());
    const fakes::FakeProcesses::Signal request{child.pid(), platform::kSignalTerminate};
    EXPECT_EQ(world.processes.signals(), std::vector{request});
    world.dispatch.advance(1ms);
    EXPECT_FALSE(child.isRunning());
    const fakes::FakeProcesses::Signal kill{child.pid(), platform::kSignalKill};
    EXPECT_EQ(world.processes.signals(), (std::vector{request, kill, kill}));
}

TEST(TunnelManager, ChildThatEndedInTimeIsStillSignalledOnce) {
    TunnelWorld world;
    const auto tunnel = world.add();
    const auto pid = world.bringUp(tunnel).pid();
    world.manager.disconnect(tunnel.id);
    world.dispatch.advance(1s);
    using Signal = fakes::FakeProcesses::Signal;
    EXPECT_EQ(world.processes.signals(),
              (std::vector{Signal{pid, platform::kSignalTerminate}, Signal{pid, platform::kSignalKill}}));
}

TEST(TunnelManager, DisconnectOfAnUnknownIdLeavesAnIdleStatusAndItsLine) {
    TunnelWorld world;
    const auto running = world.add("1080");
    const auto tunnel = world.add();
    world.manager.disconnect(tunnel.id);
    world.dispatch.runAll();
    EXPECT_EQ(world.manager.status(tunnel.id), TunnelStatus::idle());
    EXPECT_EQ(world.messages(tunnel), Messages{kProxyOff});
    EXPECT_EQ(world.routing.count("removeAllProxy No active tunnels"), 1);
    EXPECT_EQ(world.routing.count("scheduleRebuild 0 tunnels, 0 ports"), 1);
    EXPECT_TRUE(world.manager.tunnelPortMap().empty());
}

TEST(TunnelManager, DisconnectWhileOthersAreLiveRefreshesTheProxyInstead) {
    TunnelWorld world;
    const auto first = world.add("1080");
    const auto second = world.add("1081");
    world.bringUp(first);
    world.bringUp(second);
    world.routing.calls.clear();
    world.manager.disconnect(first.id);
    world.dispatch.runAll();
    EXPECT_EQ(world.routing.count("applySystemProxy 1"), 1);
    EXPECT_EQ(world.routing.count("removeAllProxy"), 0);
    EXPECT_EQ(world.line(first, kProxyOff), nullptr);
    EXPECT_EQ(world.manager.tunnelPortMap(), (TunnelPortMap{{second.id, "1081"}}));
}

TEST(TunnelManager, LastDisconnectSwitchesTheProxyOff) {
    TunnelWorld world;
    const auto tunnel = world.add();
    world.bringUp(tunnel);
    world.routing.calls.clear();
    world.manager.disconnect(tunnel.id);
    world.dispatch.runAll();
    EXPECT_EQ(world.routing.count("removeAllProxy No active tunnels"), 1);
    EXPECT_EQ(world.routing.count("scheduleRebuild"), 1);
    EXPECT_NE(world.line(tunnel, kProxyOff), nullptr);
}

TEST(TunnelManager, StoppingAPlaceholderTakesTheLaunchAway) {
    TunnelWorld world;
    const auto tunnel = world.add();
    world.manager.connect(tunnel, world.store);
    world.manager.disconnect(tunnel.id);
    world.dispatch.advance(10s);
    EXPECT_EQ(world.processes.launched().size(), 0U);
    EXPECT_TRUE(world.processes.signals().empty());
    EXPECT_EQ(world.manager.status(tunnel.id), TunnelStatus::idle());
    EXPECT_NE(world.line(tunnel, "■ Tunnel stopped (PID: 0)"), nullptr);
}

TEST(TunnelManager, OldChildsEndTakesTheNewEntryAlong) {
    TunnelWorld world;
    world.processes.setExitOnTerminate(std::nullopt);
    const auto tunnel = world.add();
    auto& old = world.bringUp(tunnel);
    world.manager.disconnect(tunnel.id);
    auto& fresh = world.launch(tunnel);
    ASSERT_NE(&old, &fresh);
    old.exit(255);
    world.dispatch.runAll();
    EXPECT_EQ(world.manager.activeProcess(tunnel.id), nullptr);
    EXPECT_TRUE(fresh.isRunning());
    EXPECT_NE(world.line(tunnel, "Process exited (code: 255)"), nullptr);
    EXPECT_EQ(world.manager.status(tunnel.id), TunnelStatus::disconnected());
}

TEST(TunnelManager, WhatTheChildSaysReachesTheLogAndNotTheStatus) {
    TunnelWorld world;
    const auto tunnel = world.add();
    auto& child = world.bringUp(tunnel);
    child.emitStandardError("Warning: Permanently added\n\nPermission denied (publickey).\nfine\n");
    world.dispatch.runAll();
    EXPECT_EQ(world.line(tunnel, "Warning: Permanently added")->level, LogLevel::warning);
    EXPECT_EQ(world.line(tunnel, "Permission denied (publickey).")->level, LogLevel::error);
    EXPECT_EQ(world.line(tunnel, "fine")->level, LogLevel::info);
    EXPECT_EQ(world.manager.status(tunnel.id), TunnelStatus::connected());
}

TEST(TunnelManager, QuitEndsEveryChildAtOnceAndSilently) {
    TunnelWorld world;
    const auto first = world.add("1080");
    const auto second = world.add("1081");
    world.processes.setExitOnTerminate(std::nullopt);
    world.bringUp(first);
    world.launch(second);
    const auto before = world.messages(first);
    world.notifications.post(platform::kApplicationWillTerminate);
    EXPECT_EQ(world.processes.signals().size(), 6U);
    EXPECT_TRUE(world.manager.tunnelPortMap().empty());
    EXPECT_EQ(world.manager.activeProcess(first.id), nullptr);
    world.dispatch.runGlobal();
    EXPECT_EQ(world.processes.runningCount(), 0U);
    EXPECT_EQ(world.messages(first), before);
    EXPECT_EQ(world.manager.status(first.id), TunnelStatus::connected());
}

TEST(TunnelManager, QuitMeetsAPlaceholderWithoutHarm) {
    TunnelWorld world;
    world.manager.connect(world.add(), world.store);
    world.notifications.post(platform::kApplicationWillTerminate);
    world.dispatch.advance(10s);
    EXPECT_TRUE(world.processes.signals().empty());
    EXPECT_EQ(world.processes.launched().size(), 0U);
}

TEST(TunnelManager, RefreshAddsTheGivenPortOnlyWhenItIsNotEmpty) {
    TunnelWorld world;
    const auto id = support::Uuid::random();
    world.manager.refreshSystemProxy(id, "1080");
    world.dispatch.runAll();
    EXPECT_EQ(world.routing.appliedPorts, (TunnelPortMap{{id, "1080"}}));
    world.manager.refreshSystemProxy(id, "");
    world.dispatch.runAll();
    EXPECT_TRUE(world.routing.appliedPorts.empty());
    EXPECT_TRUE(world.manager.tunnelPortMap().empty());
}

TEST(TunnelManager, ManagerThatIsGoneIsLeftInPeace) {
    fakes::FakeDispatch dispatch;
    fakes::FakeClock clock(dispatch);
    fakes::FakeProcesses processes(dispatch);
    fakes::FakeHostEnvironment host;
    fakes::FakeUserDefaults defaults;
    support::NotificationCenter notifications;
    NoRouting routing;
    fakes::QuietPlatform quiet;
    TunnelStore store(defaults, clock);
    {
        TunnelManager manager(
            quiet.services(dispatch, clock, processes, host, defaults, notifications, routing));
        manager.connect(store.tunnels().front(), store);
        dispatch.runAll();
        manager.disconnect(store.tunnels().front().id);
    }
    dispatch.advance(10s);
    processes.last().exit(255);
    dispatch.runAll();
    EXPECT_EQ(store.tunnels().front().lastConnectedAt, std::nullopt);
}

} // namespace
} // namespace fernwick
