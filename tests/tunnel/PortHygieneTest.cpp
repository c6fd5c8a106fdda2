#include "tunnel/PortHygiene.h"

#include "tunnel/TunnelWorld.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <string>
#include <unistd.h>

namespace fernwick {
namespace {

using namespace std::chrono_literals;
using fakes::TunnelWorld;
using testing::ElementsAre;
using testing::IsEmpty;
using Signal = fakes::FakeProcesses::Signal;

struct ScanRow {
    std::string name;
    std::string output;
    std::vector<int> found;
};

class ProcessIds : public testing::TestWithParam<ScanRow> {};

TEST_P(ProcessIds, AreReadFromWhatLsofPrinted) {
    EXPECT_EQ(parseProcessIds(GetParam().output), GetParam().found);
}

INSTANTIATE_TEST_SUITE_P(
    Output, ProcessIds,
    testing::Values(ScanRow{"Nothing", "", {}}, ScanRow{"One", "4711\n", {4711}},
                    ScanRow{"SeveralInOrder", "30\n10\n20\n", {30, 10, 20}},
                    ScanRow{"NoFinalLineEnd", "10\n20", {10, 20}},
                    ScanRow{"OtherLineEnds", "10\r\n20\r30", {10, 20, 30}},
                    ScanRow{"EmptyLines", "\n\n10\n\n", {10}}, ScanRow{"Blanks", " \t10\t \n   \n", {10}},
                    ScanRow{"BadLineIsLostAlone", "10\nlsof: no pwd entry\n20\n", {10, 20}},
                    ScanRow{"TrailingWord", "10 ssh\n20\n", {20}}, ScanRow{"Plus", "+10\n", {10}},
                    ScanRow{"TwoSigns", "+-10\n++10\n--10\n", {}}, ScanRow{"SignAlone", "+\n-\n", {}},
                    ScanRow{"NotAboveZero", "0\n-5\n-0\n7\n", {7}},
                    ScanRow{"Overflow", "2147483647\n2147483648\n99999999999999999999\n", {2147483647}},
                    ScanRow{"Hexadecimal", "0x10\n1e3\n1.5\n", {}}, ScanRow{"LeadingZeros", "0010\n", {10}},
                    ScanRow{"NotUtf8", "10\n\xff\n20\n", {}}),
    [](const auto& row) { return row.param.name; });

// What lsof answers, one answer for each scan; the last one stays.
void lsofPrints(TunnelWorld& world, std::vector<std::string> outputs) {
    for (auto& output : outputs) {
        world.platform.commands.answer("/bin/sh", platform::CommandResult{0, std::move(output), ""});
    }
}

struct PortHygieneTest : testing::Test {
    TunnelWorld world;
    PortHygiene hygiene{{world.dispatch, world.clock, world.platform.commands, world.processes},
                        world.manager.logs()};
};

TEST_F(PortHygieneTest, ScanAsksLsofThroughTheShell) {
    lsofPrints(world, {"12\n34\n"});
    EXPECT_THAT(hygiene.listenersOnPort("8080"), ElementsAre(12, 34));
    ASSERT_EQ(world.platform.commands.requests().size(), 1U);
    const auto request = world.platform.commands.requests().front();
    EXPECT_EQ(request.executable, "/bin/sh");
    EXPECT_THAT(request.arguments, ElementsAre("-c", "lsof -ti tcp:8080 2>/dev/null"));
}

TEST_F(PortHygieneTest, PortReachesTheShellAsItStands) {
    (void)hygiene.listenersOnPort("  ");
    (void)hygiene.listenersOnPort("80; id");
    EXPECT_EQ(world.platform.commands.requests()[0].arguments[1], "lsof -ti tcp:   2>/dev/null");
    EXPECT_EQ(world.platform.commands.requests()[1].arguments[1], "lsof -ti tcp:80; id 2>/dev/null");
}

TEST_F(PortHygieneTest, ExitStatusOfTheScanIsNotLookedAt) {
    world.platform.commands.answer("/bin/sh", platform::CommandResult{1, "12\n", "lsof: something"});
    EXPECT_THAT(hygiene.listenersOnPort("8080"), ElementsAre(12));
}

TEST_F(PortHygieneTest, ScanThatCannotStartFindsNothing) {
    world.platform.commands.answer("/bin/sh", std::unexpected(platform::LaunchError{ENOENT, "gone"}));
    EXPECT_THAT(hygiene.listenersOnPort("8080"), IsEmpty());
    EXPECT_THAT(hygiene.killListenersOnPort("8080"), IsEmpty());
    EXPECT_THAT(world.processes.signals(), IsEmpty());
}

TEST_F(PortHygieneTest, KillSignalsTwiceWithAPauseAndLooksOnce) {
    lsofPrints(world, {"12\n34\n", ""});
    EXPECT_THAT(hygiene.killListenersOnPort("8080"), ElementsAre(12, 34));
    EXPECT_THAT(world.processes.signals(),
                ElementsAre(Signal{12, 15}, Signal{34, 15}, Signal{12, 9}, Signal{34, 9}));
    EXPECT_EQ(world.dispatch.elapsed(), 300ms);
    EXPECT_EQ(world.platform.commands.requests().size(), 1U);
}

TEST_F(PortHygieneTest, NothingToKillCostsNoPause) {
    lsofPrints(world, {""});
    EXPECT_THAT(hygiene.killListenersOnPort("8080"), IsEmpty());
    EXPECT_EQ(world.dispatch.elapsed(), 0ms);
}

TEST(PortHygieneConnect, FreePortGivesNoLineAndGoesStraightToTheLaunch) {
    TunnelWorld world;
    lsofPrints(world, {""});
    const auto tunnel = world.add();
    world.launch(tunnel);
    EXPECT_EQ(world.platform.commands.requests().size(), 1U);
    EXPECT_EQ(world.messages(tunnel).size(), 3U);
    EXPECT_EQ(world.dispatch.elapsed(), 0ms);
}

TEST(PortHygieneConnect, TakenPortIsClearedBeforeTheLaunchAndTold) {
    TunnelWorld world;
    lsofPrints(world, {"77\n", "77\n78\n", ""});
    const auto tunnel = world.add();
    world.launch(tunnel);
    const auto messages = world.messages(tunnel);
    ASSERT_EQ(messages.size(), 5U);
    EXPECT_EQ(messages[1], "⚠ Port :8080 bị chiếm — đang kill...");
    EXPECT_EQ(messages[2], "✓ Port :8080 đã được giải phóng");
    EXPECT_THAT(messages[3], testing::StartsWith("Executing: "));
    EXPECT_EQ(world.line(tunnel, "⚠ Port")->level, LogLevel::warning);
    EXPECT_EQ(world.line(tunnel, "✓ Port")->level, LogLevel::info);
    EXPECT_EQ(world.platform.commands.requests().size(), 2U); // the clearing scans once more
    EXPECT_THAT(world.processes.signals(),
                ElementsAre(Signal{77, 15}, Signal{78, 15}, Signal{77, 9}, Signal{78, 9}));
}

TEST(PortHygieneConnect, RunsInTheBackgroundWithAUsersUrgency) {
    TunnelWorld world;
    world.dispatch.holdGlobal(true);
    const auto tunnel = world.add();
    world.manager.connect(tunnel, world.store);
    world.dispatch.runAll();
    EXPECT_TRUE(world.platform.commands.requests().empty());
    EXPECT_TRUE(world.processes.launched().empty());
    using Record = fakes::FakeDispatch::Record;
    EXPECT_THAT(world.dispatch.records(),
                testing::Contains(Record{Record::Kind::global, platform::Priority::userInitiated, 0ms}));
    world.dispatch.holdGlobal(false);
    world.dispatch.runAll();
    EXPECT_EQ(world.processes.launched().size(), 1U);
}

TEST(PortHygieneConnect, EmptyPortIsNotLookedAt) {
    TunnelWorld world;
    world.launch(world.add(""));
    EXPECT_TRUE(world.platform.commands.requests().empty());
}

TEST(PortHygieneConnect, PortOfBlanksIsLookedAtAndFindsNothing) {
    TunnelWorld world;
    lsofPrints(world, {""});
    world.launch(world.add("  "));
    EXPECT_EQ(world.platform.commands.requests().size(), 1U);
    EXPECT_EQ(world.processes.launched().size(), 1U);
}

TEST(PortHygieneConnect, OurOwnProcessIsNotSpared) {
    TunnelWorld world;
    const int own = getpid();
    lsofPrints(world, {std::to_string(own) + "\n"});
    world.launch(world.add());
    EXPECT_THAT(world.processes.signals(), ElementsAre(Signal{own, 15}, Signal{own, 9}));
}

TEST(PortHygieneConnect, LaunchGoesOnAfterTheHolderOfThePortTookTheEntryAlong) {
    TunnelWorld world;
    lsofPrints(world, {"", "1000\n"});
    const auto tunnel = world.add();
    world.processes.setExitOnTerminate(std::nullopt);
    auto& orphan = world.bringUp(tunnel); // process 1000
    world.manager.disconnect(tunnel.id);
    world.dispatch.runMain();
    world.manager.connect(tunnel, world.store);
    world.dispatch.runAll();
    EXPECT_FALSE(orphan.isRunning());
    EXPECT_EQ(world.processes.launched().size(), 2U);
}

TEST(PortHygieneStop, WhatIsLeftOnThePortIsEndedAMomentAfterTheStop) {
    TunnelWorld world;
    lsofPrints(world, {""});
    const auto tunnel = world.add();
    world.bringUp(tunnel);
    world.platform.commands.setResponder([](const auto&) { return platform::CommandResult{0, "99\n", ""}; });
    const auto scans = world.platform.commands.requests().size();
    world.manager.disconnect(tunnel.id);
    world.dispatch.advance(299ms);
    EXPECT_EQ(world.platform.commands.requests().size(), scans);
    world.dispatch.advance(1ms);
    EXPECT_EQ(world.platform.commands.requests().size(), scans + 2);
    EXPECT_THAT(world.processes.signals(), testing::IsSupersetOf({Signal{99, 15}, Signal{99, 9}}));
    ASSERT_NE(world.line(tunnel, "■ Killed orphaned PID(s) on :8080"), nullptr);
    EXPECT_EQ(world.line(tunnel, "■ Killed orphaned PID(s) on :8080")->level, LogLevel::info);
    using Record = fakes::FakeDispatch::Record;
    EXPECT_THAT(world.dispatch.records(),
                testing::Contains(Record{Record::Kind::globalAfter, platform::Priority::normal, 300ms}));
}

TEST(PortHygieneStop, FreePortIsLeftWithoutALine) {
    TunnelWorld world;
    lsofPrints(world, {""});
    const auto tunnel = world.add();
    world.bringUp(tunnel);
    world.manager.disconnect(tunnel.id);
    world.dispatch.advance(2s);
    EXPECT_EQ(world.platform.commands.requests().size(), 2U);
    EXPECT_EQ(world.line(tunnel, "■ Killed"), nullptr);
}

TEST(PortHygieneStop, TunnelThatNeverCameUpIsNotCleanedAfter) {
    TunnelWorld world;
    lsofPrints(world, {""});
    const auto tunnel = world.add();
    world.launch(tunnel);
    world.manager.disconnect(tunnel.id);
    world.dispatch.advance(2s);
    EXPECT_EQ(world.platform.commands.requests().size(), 1U);
}

} // namespace
} // namespace fernwick
