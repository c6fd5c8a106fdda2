// The engine against a server of the engine's API, through the real client; only time is virtual.
#include "../platform/QtHarness.h"
#include "EngineWorld.h"
#include "platform/qt/QtHttpClient.h"
#include "support/StandInServer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace fernwick {
namespace {

using namespace std::chrono_literals;
using Status = ClashEngineStatus;
using fakes::StandInServer;
using End = StandInServer::End;

struct HttpWorld {
    platform::QtHarness qt;
    platform::QtHttpClient client{qt.dispatch()};
    StandInServer server;
    EngineWorld world;
    ClashEngine engine{services()};

    EngineServices services() {
        auto all = world.services();
        return {.dispatch = all.dispatch,
                .clock = all.clock,
                .files = all.files,
                .commands = all.commands,
                .http = client,
                .service = all.service,
                .administrator = all.administrator,
                .host = all.host,
                .binaryCandidates = all.binaryCandidates,
                .bundle = all.bundle,
                .print = [](std::string_view) {},
                .apiBase = server.base()};
    }

    // Whether the log gets that line; no virtual time passes.
    [[nodiscard]] bool logs(const std::string& message) {
        return qt.waitUntil([&] {
            world.dispatch.runAll();
            return !engine.logs().empty() && engine.logs().back().ends_with(message);
        });
    }
};

TEST(ClashEngineHttp, StartReloadHealthAndStop) {
    HttpWorld http;
    http.server.answer(200, R"({"meta":true,"version":"v1.18.0"})");
    http.server.answer(204);
    http.server.answer(200);
    http.engine.start("first");
    http.world.dispatch.advance(1800ms);
    ASSERT_TRUE(http.logs("✅ mihomo is running"));
    http.engine.start("second");
    ASSERT_TRUE(http.logs("✅ Config reloaded via API"));
    EXPECT_EQ(http.world.writtenConfig(), "second");
    http.world.dispatch.advance(30s);
    ASSERT_TRUE(http.logs("✅ mihomo is running"));
    EXPECT_EQ(http.engine.status(), Status::running());
    http.engine.stop();
    ASSERT_TRUE(http.logs("mihomo stopped"));
    const auto requests = http.server.requests();
    ASSERT_EQ(requests.size(), 3U);
    EXPECT_TRUE(requests[0].head.starts_with("GET /version HTTP/1.1\r\n")) << requests[0].head;
    EXPECT_TRUE(requests[1].head.starts_with("PUT /configs?force=true HTTP/1.1\r\n")) << requests[1].head;
    EXPECT_TRUE(requests[1].head.contains("Content-Type: application/json\r\n")) << requests[1].head;
    EXPECT_EQ(requests[1].body, std::string(R"({"path":")") + kEngineConfig + "\"}");
    EXPECT_TRUE(requests[2].head.starts_with("GET /version HTTP/1.1\r\n")) << requests[2].head;
}

TEST(ClashEngineHttp, ApiThatComesLateIsWaitedFor) {
    HttpWorld http;
    http.server.answer({"", End::reset});
    http.server.answer({"garbage\r\n\r\n"});
    http.engine.start("first");
    http.world.dispatch.advance(1800ms);
    ASSERT_TRUE(http.logs("⏳ Waiting for mihomo... (7 attempts left)"));
    http.world.dispatch.advance(1500ms);
    ASSERT_TRUE(http.logs("⏳ Waiting for mihomo... (6 attempts left)"));
    http.server.answer(200);
    http.server.answer(200);
    // Of the answers that were told first some may be left, since a client asks again after a reset.
    for (int attempt = 0; attempt < 4 && http.engine.status() != Status::running(); ++attempt) {
        const auto before = http.engine.logs().size();
        http.world.dispatch.advance(1500ms);
        ASSERT_TRUE(http.qt.waitUntil([&] {
            http.world.dispatch.runAll();
            return http.engine.logs().size() > before;
        }));
    }
    EXPECT_EQ(http.engine.status(), Status::running());
}

// An engine that answers a reload so is restarted with the new text.
void expectRestart(const std::string& name, StandInServer::Answer answer) {
    HttpWorld http;
    http.server.answer(200);
    http.server.answer(std::move(answer));
    http.engine.start("first");
    http.world.dispatch.advance(1800ms);
    ASSERT_TRUE(http.logs("✅ mihomo is running")) << name;
    http.engine.reload("second");
    ASSERT_TRUE(http.logs("mihomo stopped")) << name;
    EXPECT_EQ(http.engine.status(), Status::stopped()) << name;
    http.world.dispatch.advance(500ms);
    ASSERT_TRUE(http.qt.waitUntil([&] {
        http.world.dispatch.runAll();
        return http.engine.status() == Status::starting();
    })) << name;
    EXPECT_EQ(http.world.writtenConfig(), "second") << name;
    EXPECT_EQ(http.world.calls("restart"), 2) << name;
}

TEST(ClashEngineHttp, ReloadThatIsRefusedRestarts) {
    expectRestart("200", {"HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\n{}"});
    expectRestart("400",
                  {"HTTP/1.1 400 Bad Request\r\nContent-Length: 25\r\n\r\n{\"message\":\"yaml: line 1\"}"});
    expectRestart("garbage", {"SSH-2.0-OpenSSH\r\n\r\n"});
    expectRestart("closed", {""});
}

TEST(ClashEngineHttp, NobodyThereIsEightRefusalsAndAnError) {
    HttpWorld http;
    auto services = http.services();
    services.apiBase = StandInServer().base(); // it is gone again
    ClashEngine engine(std::move(services));
    engine.start("first");
    http.world.dispatch.advance(300ms);
    for (int left = 7; left >= 0; --left) {
        http.world.dispatch.advance(1500ms);
        ASSERT_TRUE(http.qt.waitUntil([&] {
            http.world.dispatch.runAll();
            return engine.logs().back().contains("(" + std::to_string(left) + " attempts left)");
        }));
    }
    http.world.dispatch.advance(1500ms);
    EXPECT_EQ(engine.status(), Status::error("mihomo không khởi động được. Xem log: /tmp/fernwick-mihomo.log"));
}

} // namespace
} // namespace fernwick
