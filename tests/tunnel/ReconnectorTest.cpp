#include "tunnel/Reconnector.h"

#include "tunnel/TunnelWorld.h"

#include <gmock/gmock.h>

namespace fernwick {
namespace {

using namespace std::chrono_literals;
using fakes::TunnelWorld;
using platform::NetworkPathStatus;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kGiveUp = "Mất kết nối — thử lại thủ công";

// A world whose store the routing layer holds, as it does from the main window's first showing on.
struct ReconnectorTest : testing::Test {
    ReconnectorTest() { world.routing.setTunnelStore(world.store); }

    Tunnel addRetrying(std::string port = "8080") {
        auto tunnel = world.add(std::move(port));
        tunnel.reconnectOnFailure = true;
        world.store.update(tunnel);
        return tunnel;
    }
    void sleep() {
        world.platform.power.willSleep.emit();
        world.dispatch.runAll();
    }
    void wake() {
        world.platform.power.didWake.emit();
        world.dispatch.runAll();
    }
    void network(NetworkPathStatus status) {
        world.platform.network->report(status);
        world.dispatch.runAll();
    }
    // Ends the newest child and lets the exit be handled.
    void fail(int status) {
        world.processes.last().exit(status);
        world.dispatch.runAll();
    }
    // Launches a tunnel that never comes up, until it gives up.
    void useUpRetries(const Tunnel& tunnel) {
        world.launch(tunnel);
        for (int attempt = 0; attempt < Reconnector::kMaxReconnectAttempts; ++attempt) {
            fail(255);
            world.dispatch.advance(Reconnector::kReconnectDelay);
        }
        fail(255);
    }
    [[nodiscard]] auto count(const Tunnel& tunnel, std::string_view begin) const {
        return std::ranges::count_if(world.messages(tunnel),
                                     [&](const auto& text) { return text.starts_with(begin); });
    }
    [[nodiscard]] std::size_t launches() const { return world.processes.launched().size(); }
    [[nodiscard]] std::optional<TunnelStatus> status(const Tunnel& tunnel) const {
        return world.manager.status(tunnel.id);
    }

    TunnelWorld world;
};

struct OpeningRow {
    std::string name;
    int status;
    std::string line;
};

class RetryLine : public ReconnectorTest, public testing::WithParamInterface<OpeningRow> {};

TEST_P(RetryLine, OpensByTheExitStatusAlone) {
    const auto tunnel = addRetrying();
    world.bringUp(tunnel);
    fail(GetParam().status);
    ASSERT_NE(world.line(tunnel, GetParam().line), nullptr);
    EXPECT_EQ(world.messages(tunnel).back(), GetParam().line);
    EXPECT_EQ(world.line(tunnel, GetParam().line)->level, LogLevel::warning);
    EXPECT_EQ(status(tunnel), TunnelStatus::connecting());
    world.dispatch.advance(4999ms);
    EXPECT_EQ(launches(), 1U);
    world.dispatch.advance(1ms);
    EXPECT_EQ(launches(), 2U);
}

INSTANTIATE_TEST_SUITE_P(
    Exits, RetryLine,
    testing::Values(OpeningRow{"NetworkError", 255, "🔴 Mất kết nối mạng — reconnect sau 5s (lần 1/5)..."},
                    OpeningRow{"GeneralError", 1, "⚠ Process thoát bất thường — reconnect sau 5s (lần 1/5)..."},
                    OpeningRow{"Interrupted", 130,
                               "⚠ Process thoát bất thường — reconnect sau 5s (lần 1/5)..."},
                    OpeningRow{"Killed", 9, "⚠ Process thoát bất thường — reconnect sau 5s (lần 1/5)..."},
                    OpeningRow{"Terminated", 15, "⚠ Process thoát bất thường — reconnect sau 5s (lần 1/5)..."}),
    [](const auto& row) { return row.param.name; });

TEST_F(ReconnectorTest, ExitWithStatusZeroNeverRetries) {
    const auto tunnel = addRetrying();
    world.bringUp(tunnel);
    fail(0);
    world.dispatch.advance(60s);
    EXPECT_EQ(status(tunnel), TunnelStatus::disconnected());
    EXPECT_EQ(launches(), 1U);
}

TEST_F(ReconnectorTest, WithoutTheSwitchNothingRetries) {
    const auto tunnel = world.add();
    world.bringUp(tunnel);
    fail(255);
    world.dispatch.advance(60s);
    EXPECT_EQ(status(tunnel), TunnelStatus::disconnected());
    EXPECT_EQ(launches(), 1U);
}

TEST_F(ReconnectorTest, FiveRetriesThenItGivesUp) {
    const auto tunnel = addRetrying();
    int announced = 0;
    world.launch(tunnel);
    for (int attempt = 1; attempt <= 5; ++attempt) {
        fail(255);
        const auto line = "🔴 Mất kết nối mạng — reconnect sau 5s (lần " + std::to_string(attempt) + "/5)...";
        EXPECT_EQ(world.messages(tunnel).back(), line);
        EXPECT_EQ(status(tunnel), TunnelStatus::connecting());
        world.dispatch.advance(5s);
    }
    EXPECT_EQ(launches(), 6U);
    const auto subscription = world.store.changed.connect([&] { ++announced; });
    fail(255);
    EXPECT_EQ(status(tunnel), TunnelStatus::error(kGiveUp));
    EXPECT_EQ(world.messages(tunnel).back(), "✗ Đã thử 5 lần, không kết nối được.");
    EXPECT_EQ(world.line(tunnel, "✗")->level, LogLevel::error);
    EXPECT_EQ(announced, 1);
    world.dispatch.advance(60s);
    EXPECT_EQ(launches(), 6U);
    EXPECT_EQ(world.dispatch.pendingTimers(), 0U);
}

TEST_F(ReconnectorTest, RetryIsNotAnnouncedByTheStore) {
    const auto tunnel = addRetrying();
    world.launch(tunnel);
    int announced = 0;
    const auto subscription = world.store.changed.connect([&] { ++announced; });
    fail(255);
    EXPECT_EQ(announced, 0);
}

TEST_F(ReconnectorTest, ChildThatLivesLongEnoughToCountIsRetriedWithoutEnd) {
    const auto tunnel = addRetrying();
    world.launch(tunnel);
    for (int round = 0; round < 20; ++round) {
        world.dispatch.advance(2s);
        EXPECT_EQ(status(tunnel), TunnelStatus::connected());
        fail(255);
        EXPECT_THAT(world.messages(tunnel).back(), testing::HasSubstr("(lần 1/5)..."));
        world.dispatch.advance(5s);
    }
    EXPECT_EQ(launches(), 21U);
}

TEST_F(ReconnectorTest, AfterGivingUpTheUsersConnectStartsACountOfItsOwn) {
    const auto tunnel = addRetrying();
    useUpRetries(tunnel);
    world.launch(tunnel);
    fail(255);
    EXPECT_THAT(world.messages(tunnel).back(), testing::HasSubstr("(lần 1/5)..."));
}

TEST_F(ReconnectorTest, StopDuringTheWaitCancelsEverything) {
    const auto tunnel = addRetrying();
    world.bringUp(tunnel);
    fail(255);
    EXPECT_EQ(world.dispatch.pendingTimers(), 1U);
    world.manager.disconnect(tunnel.id);
    world.dispatch.runAll();
    EXPECT_EQ(world.dispatch.pendingTimers(), 0U);
    network(NetworkPathStatus::unsatisfied);
    network(NetworkPathStatus::satisfied);
    sleep();
    wake();
    world.dispatch.advance(60s);
    EXPECT_EQ(launches(), 1U);
    EXPECT_EQ(status(tunnel), TunnelStatus::idle());
    world.launch(tunnel);
    fail(255);
    EXPECT_THAT(world.messages(tunnel).back(), testing::HasSubstr("(lần 1/5)..."));
}

TEST_F(ReconnectorTest, TimerWritesItsLineAndLaunchesTheValueOfTheFirstLaunch) {
    const auto tunnel = addRetrying();
    world.launch(tunnel);
    auto edited = tunnel;
    edited.host = "edited.example.com";
    world.store.update(edited);
    fail(255);
    world.dispatch.advance(5s);
    EXPECT_EQ(world.processes.last().request().arguments.back(), "ubuntu@example.com");
    EXPECT_EQ(world.line(tunnel, "↻ Đang kết nối lại...")->level, LogLevel::info);
    world.dispatch.advance(1500ms);
    EXPECT_EQ(world.store.find(tunnel.id)->host, "example.com");
}

TEST_F(ReconnectorTest, TimerClearsATakenPortAndSaysSo) {
    const auto tunnel = addRetrying();
    world.launch(tunnel);
    fail(255);
    world.platform.commands.answer("/bin/sh", platform::CommandResult{0, "55\n", ""});
    const auto scans = world.platform.commands.requests().size();
    world.dispatch.advance(5s);
    EXPECT_EQ(world.platform.commands.requests().size(), scans + 2);
    EXPECT_EQ(world.line(tunnel, "🧹 Dọn port :8080...")->level, LogLevel::info);
    EXPECT_THAT(world.processes.signals(), testing::Contains(fakes::FakeProcesses::Signal{55, 9}));
}

TEST_F(ReconnectorTest, TimerLeavesAFreePortAndAnEmptyOneAlone) {
    const auto withPort = addRetrying();
    const auto without = addRetrying("");
    for (const auto& tunnel : {withPort, without}) {
        world.launch(tunnel);
        fail(255);
        world.dispatch.advance(5s);
        EXPECT_EQ(world.line(tunnel, "🧹"), nullptr);
    }
    EXPECT_EQ(world.platform.commands.requests().size(), 2U); // the connect and the timer of the first
}

// As ssh does that was asked to end and has the time to.
TEST_F(ReconnectorTest, ChildThatWouldEndInGoodOrderIsKilledForTheSleepAllTheSame) {
    world.processes.setExitOnTerminate(0);
    const auto tunnel = addRetrying();
    world.bringUp(tunnel);
    sleep();
    EXPECT_EQ(status(tunnel), TunnelStatus::connecting());
    EXPECT_EQ(world.messages(tunnel).back(), "🌙 Sleep đang diễn ra, sẽ reconnect khi thức dậy.");
}

TEST_F(ReconnectorTest, SleepKillsEveryChildAtOnceAndTheExitWaitsForTheWake) {
    world.processes.setExitOnTerminate(std::nullopt);
    const auto tunnel = addRetrying();
    auto& child = world.bringUp(tunnel);
    sleep();
    EXPECT_FALSE(child.isRunning());
    using Signal = fakes::FakeProcesses::Signal;
    EXPECT_THAT(world.processes.signals(),
                ElementsAre(Signal{child.pid(), SIGSTOP}, Signal{child.pid(), 15}, Signal{child.pid(), 9}));
    EXPECT_EQ(world.messages(tunnel).back(), "🌙 Sleep đang diễn ra, sẽ reconnect khi thức dậy.");
    EXPECT_EQ(world.line(tunnel, "🌙 Sleep")->level, LogLevel::warning);
    EXPECT_EQ(status(tunnel), TunnelStatus::connecting());
    EXPECT_EQ(world.dispatch.pendingTimers(), 0U);
    world.dispatch.advance(3600s);
    EXPECT_EQ(launches(), 1U);
}

TEST_F(ReconnectorTest, WakeWithTheNetworkUpBringsTunnelsBack) {
    const auto tunnel = addRetrying();
    world.bringUp(tunnel);
    sleep();
    wake();
    EXPECT_EQ(launches(), 2U);
    EXPECT_EQ(count(tunnel, "☀️ Mac woke up. Waiting for network..."), 1);
    EXPECT_EQ(count(tunnel, "🌐 Network ready — reconnecting 1 tunnel(s)..."), 1);
    EXPECT_EQ(world.line(tunnel, "🌐 Woke up — reconnecting...")->level, LogLevel::info);
    world.dispatch.advance(1500ms);
    EXPECT_EQ(status(tunnel), TunnelStatus::connected());
}

TEST_F(ReconnectorTest, TunnelWithoutTheSwitchAlsoComesBackAtWake) {
    const auto tunnel = world.add();
    world.bringUp(tunnel);
    sleep();
    EXPECT_EQ(status(tunnel), TunnelStatus::disconnected());
    wake();
    world.dispatch.advance(1500ms);
    EXPECT_EQ(status(tunnel), TunnelStatus::connected());
}

TEST_F(ReconnectorTest, SleepTellsThoseThatWaitAlready) {
    const auto tunnel = addRetrying();
    world.bringUp(tunnel);
    fail(255);
    sleep();
    EXPECT_EQ(world.line(tunnel, "🌙 Mac is sleeping — pausing reconnect loops...")->level, LogLevel::info);
    EXPECT_EQ(world.dispatch.pendingTimers(), 0U);
    world.dispatch.advance(60s);
    EXPECT_EQ(launches(), 1U);
    wake();
    EXPECT_EQ(launches(), 2U);
}

TEST_F(ReconnectorTest, SpentTimerOfAnEndedTunnelStillBringsItBackAtWake) {
    const auto tunnel = addRetrying();
    world.launch(tunnel);
    fail(255);
    world.dispatch.advance(7s); // retried, and up
    fail(0);
    EXPECT_EQ(status(tunnel), TunnelStatus::disconnected());
    sleep();
    wake();
    EXPECT_EQ(launches(), 3U);
}

TEST_F(ReconnectorTest, SleepWithNoTunnelsLeavesNothingAndWakeSaysNothing) {
    const auto tunnel = world.add();
    sleep();
    wake();
    network(NetworkPathStatus::unsatisfied);
    network(NetworkPathStatus::satisfied);
    EXPECT_THAT(world.messages(tunnel), IsEmpty());
    EXPECT_EQ(launches(), 0U);
}

TEST_F(ReconnectorTest, WithoutAHeldStoreOnlyTheRetryRuleMakesThemWait) {
    world.routing.store = nullptr;
    const auto plain = world.add("1080");
    const auto retrying = addRetrying("1081");
    world.bringUp(plain);
    world.bringUp(retrying);
    sleep();
    EXPECT_EQ(world.processes.runningCount(), 0U);
    wake();
    EXPECT_EQ(launches(), 3U);
    EXPECT_EQ(status(plain), TunnelStatus::disconnected());
}

TEST_F(ReconnectorTest, WakeWithTheNetworkDownWaitsForItsReturn) {
    const auto tunnel = addRetrying();
    world.bringUp(tunnel);
    sleep();
    network(NetworkPathStatus::unsatisfied);
    wake();
    EXPECT_EQ(world.messages(tunnel).back(), "☀️ Mac woke up. Waiting for network...");
    EXPECT_EQ(launches(), 1U);
    network(NetworkPathStatus::satisfied);
    EXPECT_EQ(launches(), 2U);
    EXPECT_EQ(count(tunnel, "🌐 Mạng khôi phục — reconnect 1 tunnel(s)..."), 1);
    EXPECT_EQ(world.line(tunnel, "🌐 Mạng trở lại — đang kết nối lại...")->level, LogLevel::info);
}

TEST_F(ReconnectorTest, MonitorThatNeverLeftSatisfiedGivesNoEvent) {
    const auto tunnel = addRetrying();
    world.bringUp(tunnel);
    sleep();
    network(NetworkPathStatus::satisfied);
    EXPECT_EQ(launches(), 1U);
    wake();
    EXPECT_EQ(launches(), 2U);
}

TEST_F(ReconnectorTest, NetworkReturnDuringTheSleepRelaunchesAllTheSame) {
    const auto tunnel = addRetrying();
    world.bringUp(tunnel);
    sleep();
    network(NetworkPathStatus::requiresConnection);
    network(NetworkPathStatus::satisfied);
    EXPECT_EQ(launches(), 2U);
}

TEST_F(ReconnectorTest, NetworkReturnTakesThePlaceOfTheTimer) {
    const auto tunnel = addRetrying();
    world.launch(tunnel);
    fail(255);
    network(NetworkPathStatus::unsatisfied);
    world.dispatch.advance(1s);
    network(NetworkPathStatus::satisfied);
    EXPECT_EQ(launches(), 2U);
    EXPECT_EQ(world.dispatch.pendingTimers(), 0U);
    world.dispatch.advance(60s);
    EXPECT_EQ(launches(), 2U);
}

TEST_F(ReconnectorTest, NetworkReturnBringsBackATunnelThatGaveUp) {
    const auto tunnel = addRetrying();
    useUpRetries(tunnel);
    ASSERT_EQ(status(tunnel), TunnelStatus::error(kGiveUp));
    network(NetworkPathStatus::unsatisfied);
    network(NetworkPathStatus::satisfied);
    EXPECT_EQ(launches(), 7U);
    EXPECT_EQ(status(tunnel), TunnelStatus::error(kGiveUp)); // no status of its own
    world.dispatch.advance(1500ms);
    EXPECT_EQ(status(tunnel), TunnelStatus::connected());
}

TEST_F(ReconnectorTest, NetworkReturnTakesThePlaceOfALaunchThatIsBeingPrepared) {
    const auto tunnel = addRetrying();
    world.launch(tunnel);
    fail(255);
    world.dispatch.holdGlobal(true);
    world.manager.connect(tunnel, world.store); // by hand, during the wait
    network(NetworkPathStatus::unsatisfied);
    network(NetworkPathStatus::satisfied);
    EXPECT_EQ(launches(), 2U);
    world.dispatch.holdGlobal(false);
    world.dispatch.advance(60s);
    EXPECT_EQ(launches(), 2U);
    EXPECT_EQ(world.processes.runningCount(), 1U);
}

TEST_F(ReconnectorTest, NetworkReturnSkipsWhatIsNeitherConnectingNorInError) {
    const auto tunnel = world.add(); // no retry: it becomes disconnected
    world.bringUp(tunnel);
    sleep();
    network(NetworkPathStatus::unsatisfied);
    network(NetworkPathStatus::satisfied);
    EXPECT_EQ(launches(), 1U);
    EXPECT_EQ(count(tunnel, "🌐 Mạng khôi phục — reconnect 1 tunnel(s)..."), 1);
    wake();
    EXPECT_EQ(launches(), 2U);
}

TEST_F(ReconnectorTest, LossOfTheNetworkStopsNothing) {
    const auto tunnel = addRetrying();
    auto& child = world.bringUp(tunnel);
    const auto before = world.messages(tunnel);
    network(NetworkPathStatus::unsatisfied);
    EXPECT_TRUE(child.isRunning());
    EXPECT_EQ(world.messages(tunnel), before);
    EXPECT_EQ(status(tunnel), TunnelStatus::connected());
}

TEST_F(ReconnectorTest, WakeAndNetworkReturnUseThePresentDefinition) {
    const auto tunnel = addRetrying();
    world.bringUp(tunnel);
    sleep();
    auto edited = tunnel;
    edited.host = "edited.example.com";
    world.store.update(edited);
    wake();
    EXPECT_EQ(world.processes.last().request().arguments.back(), "ubuntu@edited.example.com");
}

TEST_F(ReconnectorTest, TunnelRemovedDuringTheSleepIsSkippedAndKeepsWaiting) {
    const auto tunnel = addRetrying();
    world.bringUp(tunnel);
    sleep();
    world.store.remove(tunnel.id);
    wake();
    EXPECT_EQ(launches(), 1U);
    EXPECT_EQ(world.line(tunnel, "🌐 Woke up"), nullptr);
    world.store.add(tunnel);
    wake();
    EXPECT_EQ(launches(), 2U);
}

TEST_F(ReconnectorTest, WakeClearsThePortOfEachTunnelWithoutALine) {
    const auto tunnel = addRetrying();
    world.bringUp(tunnel);
    sleep();
    world.platform.commands.answer("/bin/sh", platform::CommandResult{0, "55\n", ""});
    wake();
    EXPECT_THAT(world.processes.signals(), testing::Contains(fakes::FakeProcesses::Signal{55, 15}));
    EXPECT_EQ(world.line(tunnel, "🧹"), nullptr);
    EXPECT_EQ(world.line(tunnel, "⚠ Port"), nullptr);
}

TEST_F(ReconnectorTest, SleepOfATunnelThatIsBeingPreparedTakesItsLaunchToTheWake) {
    world.dispatch.holdGlobal(true);
    const auto tunnel = addRetrying();
    world.manager.connect(tunnel, world.store);
    sleep();
    world.dispatch.holdGlobal(false);
    world.dispatch.advance(10s);
    EXPECT_EQ(launches(), 0U);
    wake();
    EXPECT_EQ(launches(), 1U);
}

// What happens to one tunnel that comes back by itself, by whether the machine sleeps and what the network
// does.
struct StateRow {
    std::string name;
    bool asleep;
    NetworkPathStatus network;
    enum class Event { failedExit, wake, networkReturn } event;
    std::size_t launchesAtOnce; // beyond the first
    std::size_t launchesAfterTheDelay;
};

class ReconnectorState : public ReconnectorTest, public testing::WithParamInterface<StateRow> {};

TEST_P(ReconnectorState, DecidesWhetherTheTunnelIsLaunched) {
    const auto& row = GetParam();
    using Event = StateRow::Event;
    const auto tunnel = addRetrying();
    world.bringUp(tunnel);
    if (row.event == Event::wake || row.event == Event::networkReturn) {
        // one that waits already
        if (row.asleep) {
            sleep();
        } else {
            fail(255);
        }
    } else if (row.asleep) {
        world.processes.setExitOnTerminate(std::nullopt);
        world.platform.power.willSleep.emit();
        world.dispatch.runMain(); // the child's end is still on its way
    }
    network(row.network);
    if (row.event == Event::failedExit) {
        fail(255);
    } else if (row.event == Event::wake) {
        wake();
    } else {
        network(NetworkPathStatus::satisfied);
    }
    EXPECT_EQ(launches(), 1 + row.launchesAtOnce);
    world.dispatch.advance(5s);
    EXPECT_EQ(launches(), 1 + row.launchesAfterTheDelay);
}

INSTANTIATE_TEST_SUITE_P(
    Table, ReconnectorState,
    testing::Values(
        StateRow{"AwakeFailedExit", false, NetworkPathStatus::satisfied, StateRow::Event::failedExit, 0, 1},
        StateRow{"AwakeFailedExitWithoutANetwork", false, NetworkPathStatus::unsatisfied,
                 StateRow::Event::failedExit, 0, 1},
        StateRow{"AwakeNetworkReturn", false, NetworkPathStatus::unsatisfied, StateRow::Event::networkReturn, 1,
                 1},
        StateRow{"AwakeNetworkStays", false, NetworkPathStatus::satisfied, StateRow::Event::networkReturn, 0,
                 1},
        StateRow{"AsleepFailedExit", true, NetworkPathStatus::satisfied, StateRow::Event::failedExit, 0, 0},
        StateRow{"AsleepFailedExitWithoutANetwork", true, NetworkPathStatus::unsatisfied,
                 StateRow::Event::failedExit, 0, 0},
        StateRow{"WakeWithTheNetwork", true, NetworkPathStatus::satisfied, StateRow::Event::wake, 1, 1},
        StateRow{"WakeWithoutANetwork", true, NetworkPathStatus::unsatisfied, StateRow::Event::wake, 0, 0},
        StateRow{"WakeWithANetworkThatWantsALogin", true, NetworkPathStatus::requiresConnection,
                 StateRow::Event::wake, 0, 0},
        StateRow{"AsleepNetworkReturn", true, NetworkPathStatus::unsatisfied, StateRow::Event::networkReturn, 1,
                 1}),
    [](const auto& row) { return row.param.name; });

TEST_F(ReconnectorTest, SleepAndWakeOnlyHopWhereTheyAreNotified) {
    const auto tunnel = addRetrying();
    auto& child = world.bringUp(tunnel);
    world.platform.power.willSleep.emit();
    EXPECT_TRUE(child.isRunning());
    world.dispatch.runAll();
    EXPECT_FALSE(child.isRunning());
}

TEST_F(ReconnectorTest, MonitorRunsOnItsOwnQueueFromTheStart) {
    EXPECT_TRUE(world.platform.network->started());
    EXPECT_THAT(world.dispatch.serialLabels(), ElementsAre("com.fernwick.network"));
}

TEST_F(ReconnectorTest, ScriptThatCannotBeWrittenIsToldToWaitingTunnelsAlone) {
    const auto waiting = addRetrying("1080");
    world.launch(waiting);
    fail(255);
    auto tunnel = world.add();
    tunnel.authMethod = AuthMethod::password;
    world.platform.secrets.saveTunnelPassword(support::Secret("hunter2"), tunnel.id);
    world.platform.files.writeFailure = platform::FileError{28, "No space left on device"};
    world.launch(tunnel);
    EXPECT_EQ(world.line(waiting, "⚠ Không tạo được askpass script: No space left on device")->level,
              LogLevel::info);
    EXPECT_EQ(world.line(tunnel, "⚠ Không"), nullptr);
    EXPECT_EQ(launches(), 2U);
}

} // namespace
} // namespace fernwick
