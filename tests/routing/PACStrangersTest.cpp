// What strangers do to the PAC server, and that everybody else is served meanwhile.
#include "routing/PACClient.h"
#include "routing/PACServer.h"

#include <gtest/gtest.h>

#include <list>
#include <sys/resource.h>
#include <thread>

namespace fernwick {
namespace {

using std::chrono::milliseconds;

const std::string kRequest = "GET /proxy.pac HTTP/1.1\r\nHost: 127.0.0.1\r\n\r\n";

std::string headOf(std::size_t length) {
    return "HTTP/1.1 200 OK\r\nContent-Type: application/x-ns-proxy-autoconfig\r\nContent-Length: " +
           std::to_string(length) + "\r\nConnection: close\r\n\r\n";
}

// A server on a port of its own, and a script of so many bytes.
struct Served {
    std::uint16_t port = freePort();
    PACServer server;
    std::string answer;

    explicit Served(milliseconds patience, std::size_t length = 2000)
        : server(port, patience), answer(headOf(length) + std::string(length, 'x')) {
        server.update(std::string(length, 'x'));
        server.start();
    }

    // Whether a decent client is served.
    [[nodiscard]] bool serves() const {
        PACClient client(port);
        client.send(kRequest);
        return client.receiveAll() == answer;
    }
};

constexpr milliseconds kShort{200};
constexpr milliseconds kLong{20'000};
constexpr std::size_t kLarge = 5'000'000;

TEST(PACStrangers, SilentOneGetsTheScriptWhenTheTimeIsOver) {
    const Served served(kShort);
    PACClient silent(served.port);
    const auto began = std::chrono::steady_clock::now();
    ASSERT_TRUE(silent.connected());
    EXPECT_TRUE(served.serves());
    EXPECT_EQ(silent.receiveAll(), served.answer);
    EXPECT_GE(std::chrono::steady_clock::now() - began, kShort);
}

TEST(PACStrangers, OneThatEndsWithoutAWordGetsTheScript) {
    const Served served(kLong);
    PACClient client(served.port);
    ASSERT_TRUE(client.connected());
    client.endSending();
    EXPECT_EQ(client.receiveAll(), served.answer);
}

// The first byte is answered; what comes late does not reset the connection under the answer.
TEST(PACStrangers, SlowOneGetsTheWholeScriptAndAnEnd) {
    const Served served(kLong);
    PACClient slow(served.port);
    for (const char byte : kRequest.substr(0, 10)) {
        slow.send(std::string_view(&byte, 1));
        EXPECT_TRUE(fakes::staysTrue([] { return true; }, milliseconds(5)));
    }
    EXPECT_TRUE(served.serves());
    EXPECT_EQ(slow.receiveAll(), served.answer);
    EXPECT_FALSE(slow.broken());
}

TEST(PACStrangers, OneThatGoesOnSlowlyIsLeftWhenTheTimeIsOver) {
    const Served served(kShort);
    PACClient slow(served.port);
    const auto began = std::chrono::steady_clock::now();
    EXPECT_TRUE(fakes::waitUntil([&] { slow.send("x"); },
                                 [&] {
                                     slow.receiveSome();
                                     return slow.broken();
                                 }));
    EXPECT_GE(std::chrono::steady_clock::now() - began, kShort);
    EXPECT_TRUE(served.serves());
}

TEST(PACStrangers, TenMegabytesAreAnsweredWhole) {
    const Served served(kLong);
    PACClient client(served.port);
    client.send(std::string(10'000'000, 'x'));
    EXPECT_EQ(client.receiveAll(), served.answer);
    EXPECT_FALSE(client.broken());
}

// Neither side reads before it has written all; the server must take what comes while its answer waits.
TEST(PACStrangers, TenMegabytesForALargeScriptDoNotLockUp) {
    const Served served(kLong, kLarge);
    PACClient client(served.port, 4096);
    client.send(std::string(10'000'000, 'x'));
    EXPECT_EQ(client.receiveAll().size(), served.answer.size());
}

TEST(PACStrangers, ResetInMidAnswerHurtsNobody) {
    const Served served(kLong, kLarge);
    for (int count = 0; count < 20; ++count) {
        PACClient client(served.port, 4096);
        client.send(kRequest);
        ASSERT_TRUE(client.waitForFirst());
        client.reset();
    }
    EXPECT_TRUE(served.serves());
}

TEST(PACStrangers, SlowReaderIsCutOffAndHoldsNobodyUp) {
    Served served(kShort, kLarge);
    PACClient slow(served.port, 4096);
    slow.send(kRequest);
    ASSERT_TRUE(slow.waitForFirst());
    served.server.update("x"); // waits for nobody
    served.answer = headOf(1) + "x";
    EXPECT_TRUE(fakes::staysTrue([&] { return served.serves(); }, 3 * kShort));
    const auto received = slow.receiveAll();
    EXPECT_LT(received.size(), kLarge);
    EXPECT_TRUE(received.starts_with(headOf(kLarge))) << received.substr(0, 200);
}

TEST(PACStrangers, PatientReaderGetsALargeScriptWhole) {
    const Served served(kLong, kLarge);
    EXPECT_TRUE(served.serves());
}

// So many descriptors as these clients need are not to be had everywhere by default.
bool allowDescriptors(rlim_t count) {
    rlimit limit{};
    getrlimit(RLIMIT_NOFILE, &limit);
    limit.rlim_cur = std::max(limit.rlim_cur, std::min(count, limit.rlim_max));
    return setrlimit(RLIMIT_NOFILE, &limit) == 0 && limit.rlim_cur >= count;
}

TEST(PACStrangers, ThousandClientsAtOnceAreServed) {
    ASSERT_TRUE(allowDescriptors(2000));
    const Served served(kLong);
    std::list<PACClient> clients;
    for (int count = 0; count < 1000; ++count) {
        clients.emplace_back(served.port);
        clients.back().send(kRequest);
    }
    for (auto& client : clients) {
        ASSERT_EQ(client.receiveAll(), served.answer);
    }
}

TEST(PACStrangers, ThousandClientsMostOfThemSilentLeaveRoomForOthers) {
    ASSERT_TRUE(allowDescriptors(2000));
    const Served served(kLong);
    std::list<PACClient> silent;
    for (int count = 0; count < 1000; ++count) {
        silent.emplace_back(served.port);
        ASSERT_TRUE(silent.back().connected());
        if (count % 10 == 0) {
            EXPECT_TRUE(served.serves());
        }
    }
    // All but those that fit have been sent the script, those that came first before the others.
    for (std::size_t count = PACListener::kMostConnections; count < 1000; ++count) {
        ASSERT_EQ(silent.front().receiveAll(), served.answer);
        silent.pop_front();
    }
    EXPECT_TRUE(fakes::staysTrue([&] { return silent.back().receiveSome(); }));
    EXPECT_TRUE(served.serves());
}

} // namespace
} // namespace fernwick
