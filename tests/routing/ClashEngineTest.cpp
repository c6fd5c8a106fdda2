#include "EngineWorld.h"
#include "support/WaitUntil.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>

namespace fernwick {
namespace {

using namespace std::chrono_literals;
using platform::Priority;
using platform::ServiceState;
using Status = ClashEngineStatus;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kRestart = "restart /usr/bin/mihomo -d /home/someone/.local/share/Fernwick/clash -f "
                                 "/home/someone/.local/share/Fernwick/clash/config.yaml";

TEST(ClashEngineStatus, EqualityComparesCaseAndMessage) {
    EXPECT_EQ(Status(), Status::stopped());
    EXPECT_EQ(Status::error("a"), Status::error("a"));
    EXPECT_NE(Status::error("a"), Status::error("b"));
    EXPECT_NE(Status::starting(), Status::running());
    EXPECT_EQ(Status::error("a").message(), "a");
    EXPECT_EQ(Status::error("a").kind(), Status::Kind::error);
}

TEST(ClashEngine, ConstructionMakesTheFolderAndFindsTheProgram) {
    const EngineWorld world;
    EXPECT_TRUE(world.files.folders.contains(kEngineFolder));
    EXPECT_EQ(world.engine->configURL(), kEngineConfig);
    EXPECT_EQ(world.engine->mihomoURL(), kEngineProgram);
    EXPECT_EQ(world.engine->status(), Status::stopped());
    EXPECT_THAT(world.printed, ElementsAre("[ClashEngine] mihomo found at: /usr/bin/mihomo"));
    EXPECT_THAT(world.engine->logs(), IsEmpty());
    EXPECT_THAT(world.service.calls(), IsEmpty());
}

TEST(ClashEngine, FirstCandidateThatExistsWins) {
    EngineWorld world;
    world.files.files["/usr/local/bin/mihomo"] = {};
    EXPECT_EQ(ClashEngine(world.services()).mihomoURL(), "/usr/local/bin/mihomo");
    world.files.files["/opt/fernwick/mihomo"] = {};
    EXPECT_EQ(ClashEngine(world.services()).mihomoURL(), "/opt/fernwick/mihomo");
}

TEST(ClashEngine, MissingProgramIsPrintedAndEndsTheStart) {
    EngineWorld world(false);
    EXPECT_THAT(world.printed, ElementsAre("[ClashEngine] ❌ mihomo NOT found in any candidate path",
                                           "[ClashEngine] Bundle URL: /opt/fernwick"));
    world.files.files[kEngineProgram] = {}; // too late: it is looked for once
    world.engine->start("text");
    EXPECT_EQ(world.engine->status(), Status::stopped()); // told on the main queue
    world.dispatch.advance(1h);
    EXPECT_EQ(world.engine->status(),
              Status::error("mihomo binary not found. Bundle it at Contents/MacOS/mihomo or install via brew"));
    EXPECT_EQ(world.writtenConfig(), "(nothing)");
    EXPECT_THAT(world.service.calls(), IsEmpty());
    EXPECT_THAT(world.http.requests(), IsEmpty());
}

TEST(ClashEngine, FolderThatCannotBeMadeIsNoHindrance) {
    EngineWorld world;
    world.files.folderFailure = platform::FileError{13, "Permission denied"};
    EXPECT_EQ(ClashEngine(world.services()).mihomoURL(), kEngineProgram);
}

TEST(ClashEngine, LogLineHasTheLocalTimeAndIsPrinted) {
    EngineWorld world;
    setenv("TZ", "ICT-7", 1); // NOLINT(concurrency-mt-unsafe): no other thread runs
    tzset();
    world.dispatch.advance(3723s);
    world.printed.clear();
    world.engine->addLog("Xin chào");
    EXPECT_THAT(world.engine->logs(), IsEmpty());
    EXPECT_THAT(world.printed, ElementsAre("[ClashEngine] [08:02:03] Xin chào"));
    int told = 0;
    const auto subscription = world.engine->log().changed.connect([&] { ++told; });
    world.dispatch.runMain();
    EXPECT_THAT(world.engine->logs(), ElementsAre("[08:02:03] Xin chào"));
    EXPECT_EQ(told, 1);
}

TEST(ClashEngine, LogKeepsTheNewestFiveHundredLines) {
    EngineWorld world;
    for (int number = 1; number <= 501; ++number) {
        world.engine->addLog(std::to_string(number));
    }
    world.dispatch.runMain();
    ASSERT_EQ(world.engine->logs().size(), 500U);
    EXPECT_EQ(world.messages().front(), "2");
    EXPECT_EQ(world.messages().back(), "501");
}

TEST(ClashEngine, StartOfAReadyDaemonGoesItsWholeWay) {
    EngineWorld world;
    world.commands.answer("/usr/bin/pkill", platform::CommandResult{1, "", ""});
    world.http.answer(200, R"({"version":"1"})");
    world.engine->start("mixed-port: 7890\n");
    world.dispatch.runMain();
    EXPECT_EQ(world.engine->status(), Status::starting());
    EXPECT_EQ(world.writtenConfig(), "mixed-port: 7890\n");
    EXPECT_EQ(world.files.files[kEngineConfig].mode, platform::kOwnerOnlyFile);
    EXPECT_THAT(world.commands.requests(), IsEmpty());
    world.dispatch.runAll();
    EXPECT_THAT(world.commands.lines(), ElementsAre("/usr/bin/pkill -x mihomo"));
    EXPECT_THAT(world.service.calls(), ElementsAre("check /usr/bin/mihomo", kRestart));
    EXPECT_EQ(world.dispatch.elapsed(), 300ms);
    world.dispatch.advance(1499ms);
    EXPECT_THAT(world.http.requests(), IsEmpty());
    world.dispatch.advance(1ms);
    EXPECT_EQ(world.engine->status(), Status::running());
    EXPECT_THAT(world.messages(),
                ElementsAre(std::string("Config written to: ") + kEngineConfig, "✅ Daemon đã sẵn sàng",
                            "Starting mihomo via launchctl...", "✅ mihomo is running"));
    EXPECT_EQ(world.dispatch.pendingTimers(), 1U);
}

TEST(ClashEngine, VersionIsAskedForWithoutABodyForAMinuteAtMost) {
    EngineWorld world;
    world.bringUp();
    ASSERT_EQ(world.http.requests().size(), 1U);
    const auto& request = world.http.requests().front();
    EXPECT_EQ(request.method, "GET");
    EXPECT_EQ(request.url, "http://127.0.0.1:9090/version");
    EXPECT_EQ(request.body, "");
    EXPECT_THAT(request.headers, IsEmpty());
    EXPECT_EQ(request.timeLimit, 60s);
}

TEST(ClashEngine, ShellWorkRunsUserInitiated) {
    EngineWorld world;
    world.bringUp();
    world.engine->stop();
    using Record = fakes::FakeDispatch::Record;
    EXPECT_THAT(world.dispatch.records(),
                testing::Contains(Record{Record::Kind::global, Priority::userInitiated, 0ms}).Times(2));
}

TEST(ClashEngine, OrphanThatWasKilledIsTold) {
    EngineWorld world;
    world.commands.answer("/usr/bin/pkill", platform::CommandResult{0, "", ""});
    world.bringUp();
    EXPECT_EQ(world.count("Killed orphan mihomo process(es)"), 1);
}

TEST(ClashEngine, StartWithoutPkillGoesOn) {
    EngineWorld world; // the fake knows no program unless it is told of one
    world.bringUp();
    EXPECT_EQ(world.count("Killed orphan mihomo process(es)"), 0);
    EXPECT_EQ(world.engine->status(), Status::running());
}

TEST(ClashEngine, EightFailedProbesAreAnError) {
    EngineWorld world;
    world.engine->start("text");
    world.dispatch.advance(300ms + 1500ms + 7 * 1500ms);
    EXPECT_EQ(world.http.requests().size(), 8U);
    EXPECT_EQ(world.engine->status(), Status::starting());
    EXPECT_EQ(world.lastMessage(), "⏳ Waiting for mihomo... (0 attempts left)");
    EXPECT_EQ(world.count("⏳ Waiting for mihomo... (7 attempts left)"), 1);
    world.dispatch.advance(1500ms);
    EXPECT_EQ(world.engine->status(),
              Status::error("mihomo không khởi động được. Xem log: /tmp/fernwick-mihomo.log"));
    EXPECT_EQ(world.lastMessage(), "❌ mihomo failed to start after multiple attempts");
    world.dispatch.advance(1h);
    EXPECT_EQ(world.http.requests().size(), 8U);
    EXPECT_EQ(world.calls("restart"), 1);
}

TEST(ClashEngine, EighthProbeMayStillSucceed) {
    EngineWorld world;
    for (int number = 0; number < 7; ++number) {
        number % 2 == 0 ? world.http.refuse() : world.http.answer(503);
    }
    world.http.answer(200);
    world.engine->start("text");
    world.dispatch.advance(300ms + 1500ms + 7 * 1500ms);
    EXPECT_EQ(world.http.requests().size(), 8U);
    EXPECT_EQ(world.engine->status(), Status::running());
}

TEST(ClashEngine, ProbeThatIsNeverAnsweredCostsAMinute) {
    EngineWorld world;
    world.http.stayAway();
    world.http.answer(200);
    world.engine->start("text");
    world.dispatch.advance(300ms + 1500ms + 60s);
    EXPECT_EQ(world.lastMessage(), "⏳ Waiting for mihomo... (7 attempts left)");
    world.dispatch.advance(1500ms);
    EXPECT_EQ(world.engine->status(), Status::running());
}

TEST(ClashEngine, OnlyTwoHundredIsAlive) {
    for (const int status : {201, 204, 301, 400, 401, 404, 500}) {
        EngineWorld world;
        world.http.answer(status);
        world.engine->start("text");
        world.dispatch.advance(300ms + 1500ms);
        EXPECT_EQ(world.engine->status(), Status::starting()) << status;
        EXPECT_EQ(world.lastMessage(), "⏳ Waiting for mihomo... (7 attempts left)") << status;
    }
}

TEST(ClashEngine, StatusIsToldOnEveryAssignment) {
    EngineWorld world;
    std::vector<Status> told;
    const auto subscription =
        world.engine->statusChanged.connect([&] { told.push_back(world.engine->status()); });
    world.bringUp();
    world.engine->stop();
    world.dispatch.runAll();
    EXPECT_THAT(told, ElementsAre(Status::starting(), Status::running(), Status::stopped()));
}

TEST(ClashEngine, EveryTextGoesToTheFileAndAFailureIsNotReported) {
    EngineWorld world;
    world.files.files[kEngineConfig] = {"previous", platform::kOwnerOnlyFile};
    world.files.writeFailure = platform::FileError{28, "No space left on device"};
    world.bringUp("new");
    EXPECT_EQ(world.writtenConfig(), "previous");
    EXPECT_EQ(world.count(std::string("Config written to: ") + kEngineConfig), 1);
    EXPECT_EQ(world.engine->status(), Status::running());
}

TEST(ClashEngine, StartDuringStartingGoesTheWholeWayAgain) {
    EngineWorld world;
    world.engine->start("first");
    world.dispatch.advance(1s);
    ASSERT_EQ(world.engine->status(), Status::starting());
    world.engine->start("second");
    EXPECT_EQ(world.writtenConfig(), "second");
    world.dispatch.advance(1s);
    EXPECT_EQ(world.calls("check"), 2);
    EXPECT_EQ(world.calls("restart"), 2);
    EXPECT_THAT(world.http.lines(), testing::Each("GET http://127.0.0.1:9090/version"));
}

TEST(ClashEngine, BothChainsOfTwoStartsProbeAndEndInOneError) {
    EngineWorld world;
    world.engine->start("first");
    world.engine->start("second");
    world.dispatch.advance(1min);
    EXPECT_EQ(world.http.requests().size(), 16U);
    EXPECT_EQ(world.count("❌ mihomo failed to start after multiple attempts"), 1);
}

TEST(ClashEngine, StopEndsTheServiceAndTheHealthTimer) {
    EngineWorld world;
    world.bringUp();
    bool asked = false;
    world.engine->stop([&] {
        asked = true;
        EXPECT_EQ(world.calls("terminate"), 1);
    });
    world.dispatch.runAll();
    EXPECT_TRUE(asked);
    EXPECT_EQ(world.engine->status(), Status::stopped());
    EXPECT_EQ(world.lastMessage(), "mihomo stopped");
    EXPECT_EQ(world.dispatch.pendingTimers(), 0U);
    world.dispatch.advance(1h);
    EXPECT_EQ(world.http.requests().size(), 1U);
}

TEST(ClashEngine, StopIsAskedForWhileTheMainQueueStands) {
    EngineWorld world;
    world.bringUp();
    bool asked = false;
    world.engine->stop([&] { asked = true; });
    world.dispatch.runGlobal(); // as at the end of the application, which waits for this
    EXPECT_TRUE(asked);
    EXPECT_EQ(world.calls("terminate"), 1);
    EXPECT_EQ(world.printed.back(), "[ClashEngine] [00:00:01] mihomo stopped");
}

TEST(ClashEngine, ServiceIsNotEndedWhileItIsBeingStarted) {
    EngineWorld world;
    std::thread other;
    world.service.whileRestarting = [&] {
        world.engine->stop();
        other = std::thread([&] { world.dispatch.runGlobal(); });
        EXPECT_TRUE(fakes::staysTrue([&] { return world.calls("terminate") == 0; }));
    };
    world.engine->start("text");
    world.dispatch.runMain();
    world.dispatch.runGlobal();
    ASSERT_TRUE(other.joinable());
    other.join();
    EXPECT_EQ(world.service.calls().back(), "terminate");
}

TEST(ClashEngine, QueuedWorkOfAnEngineThatIsGoneComesToNothing) {
    EngineWorld world;
    world.commands.answer("/usr/bin/pkill", platform::CommandResult{0, "", ""});
    world.http.answer(200);
    world.engine->start("text");
    world.engine->stop();
    world.engine->addLog("last");
    world.engine.reset();
    world.dispatch.advance(1h);
    EXPECT_THAT(world.http.requests(), IsEmpty());
    EXPECT_EQ(world.dispatch.pendingTimers(), 0U);
}

TEST(ClashEngine, AnswersForAnEngineThatIsGoneComeToNothing) {
    EngineWorld world;
    world.http.answer({platform::HttpResponse{200, ""}, 10s});
    world.engine->start("text");
    world.dispatch.advance(2s);
    ASSERT_EQ(world.http.requests().size(), 1U);
    world.engine.reset();
    world.dispatch.advance(1h);
    EXPECT_EQ(world.http.requests().size(), 1U);
}

} // namespace
} // namespace fernwick
