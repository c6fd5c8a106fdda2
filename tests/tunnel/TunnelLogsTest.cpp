#include "tunnel/TunnelLogs.h"

#include "support/FakeClock.h"
#include "support/FakeDispatch.h"

#include <gtest/gtest.h>

#include <set>

namespace fernwick {
namespace {

using namespace std::chrono_literals;

struct LogsWorld {
    fakes::FakeDispatch dispatch;
    fakes::FakeClock clock{dispatch};
    TunnelLogs logs{dispatch, clock};
    support::Uuid id = support::Uuid::random();
};

TEST(TunnelLogs, The501stLinePushesOutTheFirst) {
    LogsWorld world;
    for (int number = 1; number <= 501; ++number) {
        world.logs.add(LogLevel::info, std::to_string(number), world.id);
    }
    world.dispatch.runMain();
    const auto& lines = world.logs.lines(world.id);
    ASSERT_EQ(lines.size(), 500U);
    EXPECT_EQ(lines.front().message, "2");
    EXPECT_EQ(lines.back().message, "501");
}

TEST(TunnelLogs, TimeIsTakenWhenTheQueuedWorkRuns) {
    LogsWorld world;
    world.logs.add(LogLevel::info, "line", world.id);
    EXPECT_TRUE(world.logs.lines(world.id).empty());
    world.clock.setNow({1000.0});
    world.dispatch.runMain();
    EXPECT_EQ(world.logs.lines(world.id).front().timestamp, support::Date{1000.0});
}

TEST(TunnelLogs, EveryLineHasAnIdOfItsOwn) {
    LogsWorld world;
    for (int count = 0; count < 100; ++count) {
        world.logs.append(LogLevel::info, "same", world.id);
    }
    std::set<support::Uuid> ids;
    for (const auto& line : world.logs.lines(world.id)) {
        ids.insert(line.id);
    }
    EXPECT_EQ(ids.size(), 100U);
}

TEST(TunnelLogs, TunnelsDoNotShareALog) {
    LogsWorld world;
    world.logs.append(LogLevel::error, "mine", world.id);
    EXPECT_TRUE(world.logs.lines(support::Uuid::random()).empty());
}

TEST(TunnelLogs, ClearEmptiesOneLogAndTellsIt) {
    LogsWorld world;
    const auto other = support::Uuid::random();
    world.logs.append(LogLevel::info, "line", world.id);
    world.logs.append(LogLevel::info, "line", other);
    std::vector<support::Uuid> told;
    const auto subscription = world.logs.changed.connect([&](const support::Uuid& id) { told.push_back(id); });
    world.logs.clear(world.id);
    EXPECT_TRUE(world.logs.lines(world.id).empty());
    EXPECT_EQ(world.logs.lines(other).size(), 1U);
    EXPECT_EQ(told, std::vector{world.id});
}

} // namespace
} // namespace fernwick
