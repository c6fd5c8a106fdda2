// Health checks and reloads of an engine that runs.
#include "EngineWorld.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace fernwick {
namespace {

using namespace std::chrono_literals;
using Status = ClashEngineStatus;
using testing::ElementsAre;

constexpr const char* kFailing = "❌ mihomo health check failed. Tự động khởi động lại...";

TEST(ClashEngineHealth, HealthyEngineIsAskedEveryThirtySeconds) {
    EngineWorld world;
    world.bringUp();
    world.http.answer(200);
    world.dispatch.advance(29999ms);
    EXPECT_EQ(world.http.requests().size(), 1U);
    world.dispatch.advance(1ms);
    EXPECT_EQ(world.http.requests().size(), 2U);
    EXPECT_EQ(world.count("✅ mihomo is running"), 2);
    EXPECT_EQ(world.dispatch.pendingTimers(), 1U); // the next took the place of this one
    world.dispatch.advance(300s);
    EXPECT_EQ(world.http.requests().size(), 12U);
    EXPECT_EQ(world.engine->status(), Status::running());
    EXPECT_EQ(world.calls("restart"), 1);
}

TEST(ClashEngineHealth, ThreeFailedProbesTwoSecondsApartRestartTheDaemon) {
    EngineWorld world;
    world.bringUp();
    world.http.refuse();
    world.dispatch.advance(30s);
    EXPECT_EQ(world.lastMessage(), "⏳ Waiting for mihomo... (2 attempts left)");
    world.dispatch.advance(4s);
    EXPECT_EQ(world.http.requests().size(), 4U);
    EXPECT_EQ(world.engine->status(), Status::running());
    world.dispatch.advance(1999ms);
    EXPECT_EQ(world.count(kFailing), 0);
    world.dispatch.advance(1ms);
    EXPECT_EQ(world.count(kFailing), 1);
    EXPECT_EQ(world.engine->status(), Status::starting());
    EXPECT_EQ(world.calls("restart"), 2);
    EXPECT_EQ(world.calls("check"), 1); // a restart asks nothing of what is installed
}

TEST(ClashEngineHealth, OneGoodProbeOfThreeIsHealth) {
    EngineWorld world;
    world.bringUp();
    world.http.refuse();
    world.http.answer(500);
    world.http.answer(200);
    world.dispatch.advance(34s);
    EXPECT_EQ(world.http.requests().size(), 4U);
    EXPECT_EQ(world.lastMessage(), "✅ mihomo is running");
    world.dispatch.advance(20s);
    EXPECT_EQ(world.calls("restart"), 1);
}

TEST(ClashEngineHealth, RestartsHaveNoCap) {
    EngineWorld world;
    world.bringUp();
    for (int round = 1; round <= 10; ++round) {
        world.http.refuse();
        world.http.refuse();
        world.http.refuse();
        world.http.answer(200);
        world.dispatch.advance(30s + 6s + 300ms + 1500ms);
        EXPECT_EQ(world.engine->status(), Status::running());
        EXPECT_EQ(world.count(kFailing), round);
        EXPECT_EQ(world.calls("restart"), round + 1);
        world.http.forget();
    }
}

TEST(ClashEngineHealth, RestartThatFailsEndsInTheErrorOfAStart) {
    EngineWorld world;
    world.bringUp();
    world.dispatch.advance(36s + 300ms + 1500ms + 8 * 1500ms);
    EXPECT_EQ(world.engine->status(),
              Status::error("mihomo không khởi động được. Xem log: /tmp/fernwick-mihomo.log"));
}

TEST(ClashEngineHealth, ProbesThatFailAfterAStopChangeNothing) {
    EngineWorld world;
    world.bringUp();
    world.dispatch.advance(31s); // the first probe has failed
    world.engine->stop();
    world.dispatch.advance(1h);
    EXPECT_EQ(world.http.requests().size(), 4U);
    EXPECT_EQ(world.engine->status(), Status::stopped());
    EXPECT_EQ(world.count(kFailing), 0);
    EXPECT_EQ(world.calls("restart"), 1);
}

TEST(ClashEngineReload, RunningEngineLoadsTheFile) {
    EngineWorld world;
    world.bringUp();
    world.http.answer(204);
    world.engine->start("second");
    EXPECT_EQ(world.writtenConfig(), "second");
    world.dispatch.runAll();
    const auto& request = world.http.requests().back();
    EXPECT_EQ(request.method, "PUT");
    EXPECT_EQ(request.url, "http://127.0.0.1:9090/configs?force=true");
    EXPECT_THAT(request.headers,
                ElementsAre(std::pair<std::string, std::string>("Content-Type", "application/json")));
    EXPECT_EQ(request.body, R"({"path":"/home/someone/.local/share/Fernwick/clash/config.yaml"})");
    EXPECT_EQ(request.timeLimit, 60s);
    EXPECT_EQ(world.lastMessage(), "✅ Config reloaded via API");
    EXPECT_EQ(world.engine->status(), Status::running());
    EXPECT_EQ(world.calls("restart"), 1);
    EXPECT_EQ(world.calls("terminate"), 0);
}

TEST(ClashEngineReload, PathIsEscapedAsJson) {
    EngineWorld world;
    world.host.support = "/home/\"tên\\\n/Fernwick";
    world.engine = std::make_unique<ClashEngine>(world.services());
    world.engine->reload("text");
    EXPECT_EQ(world.http.requests().back().body, R"({"path":"/home/\"tên\\\n/Fernwick/clash/config.yaml"})");
}

TEST(ClashEngineReload, PathThatIsNoTextIsLeftToTheEngineToRefuse) {
    EngineWorld world;
    world.host.support = "/home/\xff";
    world.engine = std::make_unique<ClashEngine>(world.services());
    world.engine->reload("text");
    EXPECT_EQ(world.http.requests().back().body, "");
}

// Everything that is no 204 has the daemon started anew with the same text.
void expectRestart(const std::string& name, fakes::FakeHttpClient::Answer answer) {
    EngineWorld world;
    world.bringUp();
    const auto wait = answer.result ? 0s : 60s;
    world.http.answer(std::move(answer));
    world.http.answer(200);
    world.engine->reload("second");
    world.dispatch.advance(wait);
    EXPECT_EQ(world.engine->status(), Status::stopped()) << name;
    EXPECT_EQ(world.calls("terminate"), 1) << name;
    EXPECT_EQ(world.count("⚠ API reload failed, restarting..."), 1) << name;
    EXPECT_EQ(world.lastMessage(), "mihomo stopped") << name;
    EXPECT_EQ(world.dispatch.pendingTimers(), 0U) << name;
    world.files.files.erase(kEngineConfig);
    world.dispatch.advance(499ms);
    EXPECT_EQ(world.calls("check"), 1) << name;
    world.dispatch.advance(1ms);
    EXPECT_EQ(world.calls("check"), 2) << name;
    EXPECT_EQ(world.writtenConfig(), "second") << name;
    world.dispatch.advance(2s);
    EXPECT_EQ(world.engine->status(), Status::running()) << name;
    EXPECT_EQ(world.calls("restart"), 2) << name;
}

TEST(ClashEngineReload, AnythingButTwoHundredAndFourRestartsTheDaemon) {
    expectRestart("200", {platform::HttpResponse{200, "{}"}});
    expectRestart("400", {platform::HttpResponse{400, R"({"message":"yaml: line 1"})"}});
    expectRestart("500", {platform::HttpResponse{500, ""}});
    expectRestart("refused", {std::unexpected(platform::HttpError{"Connection refused"})});
    expectRestart("silence", {std::nullopt});
}

TEST(ClashEngineReload, HealthChecksGoOnThroughAReload) {
    EngineWorld world;
    world.bringUp();
    world.http.answer(204);
    world.http.answer(200);
    world.dispatch.advance(10s);
    world.engine->reload("second");
    world.dispatch.advance(20s);
    EXPECT_EQ(world.count("✅ mihomo is running"), 2);
}

TEST(ClashEngineReload, AnswerForAnEngineThatIsGoneComesToNothing) {
    EngineWorld world;
    world.bringUp();
    world.http.answer(500);
    world.engine->reload("second");
    world.engine.reset();
    world.dispatch.advance(1h);
    EXPECT_EQ(world.calls("terminate"), 0);
    EXPECT_EQ(world.http.requests().size(), 2U);
}

} // namespace
} // namespace fernwick
