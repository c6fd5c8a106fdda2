// What is installed on the machine, and the prompt for what is not.
#include "EngineWorld.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace fernwick {
namespace {

using namespace std::chrono_literals;
using platform::ServiceState;
using Status = ClashEngineStatus;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

const auto kRefused =
    Status::error("Không thể cài proxy engine. Vui lòng thử lại và nhập password khi được hỏi.");
constexpr const char* kUpdating = "⚙ Xin quyền để cập nhật proxy engine (1 lần duy nhất)...";
constexpr const char* kPaths = "/usr/bin/mihomo -d /home/someone/.local/share/Fernwick/clash -f "
                               "/home/someone/.local/share/Fernwick/clash/config.yaml";

// A start on a machine where that is installed.
struct InstallWorld : EngineWorld {
    explicit InstallWorld(platform::ServiceCheck check) {
        service.state = std::move(check);
        http.answer(200);
    }

    void start() {
        engine->start("text");
        dispatch.runAll();
    }

    // The log behind the line about the file.
    [[nodiscard]] Texts told() const {
        auto texts = messages();
        texts.erase(texts.begin());
        return texts;
    }
};

TEST(ClashEngineInstall, FirstUseInstallsAndLaunches) {
    InstallWorld world({ServiceState::notInstalled});
    bool promptedWithFile = false;
    world.administrator.whilePrompting = [&] {
        promptedWithFile = world.files.files.contains(fakes::FakeServiceControl::kTemporaryFile);
    };
    world.start();
    EXPECT_TRUE(promptedWithFile);
    EXPECT_FALSE(world.files.files.contains(fakes::FakeServiceControl::kTemporaryFile));
    EXPECT_THAT(world.service.calls(), ElementsAre("check /usr/bin/mihomo", std::string("install ") + kPaths,
                                                   std::string("restart ") + kPaths));
    EXPECT_THAT(world.administrator.lines(), ElementsAre("install /usr/bin/mihomo"));
    EXPECT_THAT(world.told(),
                ElementsAre("⚙ Lần đầu sử dụng — cần quyền admin để cài proxy engine...",
                            "✅ Daemon đã cài thành công (chạy as root)", "Starting mihomo via launchctl..."));
    world.dispatch.advance(1500ms);
    EXPECT_EQ(world.engine->status(), Status::running());
}

TEST(ClashEngineInstall, PromptHappensOffTheMainQueue) {
    InstallWorld world({ServiceState::notInstalled});
    world.dispatch.holdGlobal(true);
    world.start();
    EXPECT_THAT(world.administrator.lines(), IsEmpty());
    EXPECT_EQ(world.engine->status(), Status::stopped());
    using Record = fakes::FakeDispatch::Record;
    EXPECT_THAT(world.dispatch.records(),
                Contains(Record{Record::Kind::global, platform::Priority::userInitiated, 0ms}).Times(1));
    world.dispatch.runGlobal();
    EXPECT_EQ(world.administrator.lines().size(), 1U);
}

void expectReinstall(platform::ServiceCheck check, const Texts& reasons) {
    InstallWorld world(std::move(check));
    world.start();
    Texts expected = reasons;
    expected.insert(expected.end(), {kUpdating, "✅ Daemon đã cài lại thành công (chạy as root)",
                                     "Starting mihomo via launchctl..."});
    EXPECT_EQ(world.told(), expected);
    EXPECT_THAT(world.service.calls(), Contains(std::string("reinstall ") + kPaths));
    EXPECT_THAT(world.administrator.lines(), ElementsAre("reinstall /usr/bin/mihomo"));
    EXPECT_EQ(world.calls("restart"), 1);
}

TEST(ClashEngineInstall, WhatIsNotAsItShouldBeIsInstalledAgain) {
    expectReinstall({ServiceState::missingRoot}, {"⚠ Daemon thiếu quyền root — cài lại để fix TUN mode..."});
    expectReinstall({ServiceState::corrupt}, {"⚠ Daemon plist bị lỗi — cài lại..."});
    expectReinstall({ServiceState::unreadable}, {"⚠ Không có quyền đọc daemon plist — xin quyền lại..."});
    expectReinstall({ServiceState::pathChanged, "unknown"},
                    {"⚠ Path thay đổi: unknown → /usr/bin/mihomo", "⚙ Cài lại daemon với path mới..."});
}

TEST(ClashEngineInstall, ApplicationThatMovedTellsTheOldPath) {
    expectReinstall(
        {ServiceState::pathChanged, "/old/place/mihomo"},
        {"⚠ Path thay đổi: /old/place/mihomo → /usr/bin/mihomo", "⚙ Cài lại daemon với path mới..."});
}

void expectFailure(ServiceState state, const std::string& message, const Texts& lines) {
    InstallWorld world({state});
    world.administrator.failNext(message);
    world.start();
    const auto all = world.messages();
    ASSERT_GE(all.size(), lines.size());
    EXPECT_EQ(Texts(all.end() - static_cast<std::ptrdiff_t>(lines.size()), all.end()), lines);
    EXPECT_EQ(world.engine->status(), kRefused);
    EXPECT_FALSE(world.files.files.contains(fakes::FakeServiceControl::kTemporaryFile));
    world.dispatch.advance(1h);
    EXPECT_EQ(world.calls("restart"), 0); // nothing tries again
    EXPECT_EQ(world.administrator.lines().size(), 1U);
    EXPECT_THAT(world.http.requests(), IsEmpty());
}

TEST(ClashEngineInstall, RefusedPromptIsTwoLinesAndAnError) {
    const Texts canceled{"❌ Bạn đã huỷ — proxy engine cần quyền admin để hoạt động",
                         "💡 Connect tunnel lại để được hỏi quyền lần nữa"};
    expectFailure(ServiceState::notInstalled, "User canceled.", canceled);
    expectFailure(ServiceState::missingRoot, "User canceled.", canceled);
    expectFailure(ServiceState::notInstalled, "execution error: (-128)", canceled);
}

TEST(ClashEngineInstall, OtherFailuresAreToldInTheSystemsWords) {
    expectFailure(ServiceState::notInstalled, "cp: No space left on device",
                  {"❌ Daemon install failed: cp: No space left on device"});
    expectFailure(ServiceState::corrupt, "cp: No space left on device",
                  {"❌ Daemon reinstall failed: cp: No space left on device"});
    expectFailure(ServiceState::notInstalled, "", {"❌ Daemon install failed: Unknown"});
    expectFailure(ServiceState::pathChanged, "", {"❌ Daemon reinstall failed: Unknown"});
}

TEST(ClashEngineInstall, DescriptionThatCannotBeWrittenEndsWithoutAPrompt) {
    for (const auto state : {ServiceState::notInstalled, ServiceState::corrupt}) {
        InstallWorld world({state});
        world.files.writeFailure = platform::FileError{28, "No space left on device"};
        world.start();
        EXPECT_EQ(world.lastMessage(), "❌ Failed to write temp plist: No space left on device");
        EXPECT_EQ(world.count(kUpdating), 0);
        EXPECT_EQ(world.engine->status(), kRefused);
        EXPECT_THAT(world.administrator.lines(), IsEmpty());
        EXPECT_EQ(world.calls("restart"), 0);
    }
}

TEST(ClashEngineInstall, NextStartAsksAgainAndLeavesTheError) {
    InstallWorld world({ServiceState::notInstalled});
    world.administrator.failNext("User canceled.");
    world.start();
    ASSERT_EQ(world.engine->status(), kRefused);
    world.start();
    EXPECT_EQ(world.administrator.lines().size(), 2U);
    EXPECT_EQ(world.engine->status(), Status::starting());
}

TEST(ClashEngineInstall, NobodyIsAskedTwiceAtATime) {
    InstallWorld world({ServiceState::notInstalled});
    world.dispatch.holdGlobal(true); // the person takes their time
    world.start();
    world.engine->start("newer");
    world.dispatch.runAll();
    world.dispatch.holdGlobal(false);
    world.dispatch.runAll();
    EXPECT_EQ(world.administrator.lines().size(), 1U);
    EXPECT_EQ(world.calls("restart"), 1);
    EXPECT_EQ(world.writtenConfig(), "newer");
    world.dispatch.advance(1500ms);
    EXPECT_EQ(world.engine->status(), Status::running());
}

TEST(ClashEngineInstall, TemporaryFileGoesEvenWhenTheEngineIsGone) {
    InstallWorld world({ServiceState::notInstalled});
    world.engine->start("text");
    world.engine.reset();
    world.dispatch.advance(1h);
    EXPECT_FALSE(world.files.files.contains(fakes::FakeServiceControl::kTemporaryFile));
    EXPECT_EQ(world.calls("restart"), 0);
}

} // namespace
} // namespace fernwick
