#include "routing/PACServer.h"

#include "routing/PACClient.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sys/resource.h>
#include <thread>
#include <vector>

namespace fernwick {
namespace {

using std::chrono::milliseconds;

const std::string kDirect = "function FindProxyForURL(url, host) { return \"DIRECT\"; }";
const std::string kRequest = "GET /proxy.pac HTTP/1.1\r\nHost: 127.0.0.1\r\n\r\n";

std::string responseWith(const std::string& script) {
    return "HTTP/1.1 200 OK\r\nContent-Type: application/x-ns-proxy-autoconfig\r\nContent-Length: " +
           std::to_string(script.size()) + "\r\nConnection: close\r\n\r\n" + script;
}

// A server on a port of its own, whose patience a test can outlive.
struct Served {
    std::uint16_t port = freePort();
    PACServer server;

    explicit Served(milliseconds patience = milliseconds(20'000)) : server(port, patience) { server.start(); }

    [[nodiscard]] std::string answerTo(std::string_view request) const {
        PACClient client(port);
        client.send(request);
        return client.receiveAll();
    }
};

// Open sockets that listen on the port, of any process.
int listenersOn(std::uint16_t port) {
    std::ifstream table("/proc/net/tcp");
    std::array<char, 32> ending{};
    std::snprintf(ending.data(), ending.size(), "00000000:%04X 00000000:0000 0A", static_cast<unsigned>(port));
    int count = 0;
    for (std::string line; std::getline(table, line);) {
        count += line.contains(ending.data()) ? 1 : 0;
    }
    return count;
}

double processorSeconds() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    const auto seconds = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
    };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

class PACServerRequest : public testing::TestWithParam<std::string> {};

TEST_P(PACServerRequest, GetsTheScript) {
    const Served served;
    EXPECT_EQ(served.answerTo(GetParam()), responseWith(kDirect));
}

INSTANTIATE_TEST_SUITE_P(Any, PACServerRequest,
                         testing::Values(kRequest, "GET /any/other?path HTTP/1.1\r\n\r\n",
                                         "POST / HTTP/1.1\r\nContent-Length: 3\r\n\r\nabc", "rubbish\r\n", "x",
                                         std::string("\0\xFF\0", 3)));

TEST(PACServer, LengthCountsBytes) {
    Served served;
    const std::string script = "// Rule: Công ty ở Hà Nội";
    served.server.update(script);
    const auto answer = served.answerTo(kRequest);
    EXPECT_EQ(answer, responseWith(script));
    EXPECT_TRUE(answer.contains("Content-Length: 31\r\n")) << answer; // of 25 characters
}

TEST(PACServer, LinesArePrintedAsTheyAre) {
    testing::internal::CaptureStdout();
    PACServer server(freePort());
    server.stop();
    server.update("Hà Nội");
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "[PACServer] Stopped\n[PACServer] PAC updated (6 bytes)\n");
}

TEST(PACServer, StartAndStopArePrintedOnce) {
    testing::internal::CaptureStdout();
    {
        Served served;
        served.server.start();
        served.server.stop();
        EXPECT_EQ(testing::internal::GetCapturedStdout(),
                  "[PACServer] Started on port " + std::to_string(served.port) + "\n[PACServer] Stopped\n");
    }
}

TEST(PACServer, AddressIsOnThisMachine) {
    EXPECT_EQ(PACServer().pacURL(), "http://127.0.0.1:9876/proxy.pac");
    EXPECT_EQ(PACServer(81).pacURL(), "http://127.0.0.1:81/proxy.pac");
    EXPECT_EQ(PACServer::kPatience, std::chrono::seconds(5));
}

TEST(PACServer, StartTwiceOpensOneSocket) {
    Served served;
    served.server.start();
    EXPECT_EQ(listenersOn(served.port), 1);
    served.server.stop();
    EXPECT_EQ(listenersOn(served.port), 0);
}

TEST(PACServer, StartsAgainAfterAStopAndKeepsTheScript) {
    Served served;
    served.server.update("kept");
    EXPECT_EQ(served.answerTo(kRequest), responseWith("kept"));
    served.server.stop();
    EXPECT_FALSE(PACClient(served.port).connected());
    served.server.start();
    EXPECT_EQ(served.answerTo(kRequest), responseWith("kept"));
}

TEST(PACServer, StopEndsConnectionsAtOnce) {
    Served served;
    PACClient silent(served.port);
    ASSERT_TRUE(silent.connected());
    const auto began = std::chrono::steady_clock::now();
    served.server.stop();
    EXPECT_LT(std::chrono::steady_clock::now() - began, std::chrono::seconds(5));
    EXPECT_EQ(silent.receiveAll(), "");
}

TEST(PACServer, ThreadHasItsName) {
    const Served served;
    const auto named = [] {
        for (const auto& task : std::filesystem::directory_iterator("/proc/self/task")) {
            std::string name;
            std::getline(std::ifstream(task.path() / "comm"), name);
            if (name == "nwick.pacserver") {
                return true;
            }
        }
        return false;
    };
    EXPECT_TRUE(fakes::waitUntil(named));
}

TEST(PACServer, PortThatIsTakenIsNotNoticedAndCostsNothing) {
    const auto port = freePort();
    const Occupant occupant(port);
    ASSERT_TRUE(occupant.wasFree());
    PACServer server(port);
    server.start();
    const auto before = processorSeconds();
    EXPECT_TRUE(fakes::staysTrue([] { return true; }, milliseconds(200)));
    EXPECT_LT(processorSeconds() - before, 0.1);
    PACClient client(port);
    client.send(kRequest);
    EXPECT_TRUE(fakes::staysTrue([&] { return client.receiveSome(); }));
    server.stop();
    server.start(); // still taken
}

TEST(PACServer, WithoutADescriptorNothingIsServedAndItStops) {
    PACServer server(freePort());
    server.start(); // once with all it needs: what a sanitizer looks up at the first call takes descriptors too
    server.stop();
    rlimit before{};
    getrlimit(RLIMIT_NOFILE, &before);
    const rlimit none{0, before.rlim_max};
    setrlimit(RLIMIT_NOFILE, &none);
    server.start();
    server.stop();
    setrlimit(RLIMIT_NOFILE, &before);
    server.start();
    server.stop();
}

TEST(PACServer, ClientsWaitWhileNoDescriptorIsLeft) {
    const Served served;
    PACClient earlier;
    earlier.connectTo(served.port);
    earlier.send(kRequest);
    ASSERT_EQ(earlier.receiveAll(), responseWith(kDirect));
    PACClient client;
    rlimit before{};
    getrlimit(RLIMIT_NOFILE, &before);
    const rlimit none{3, before.rlim_max};
    setrlimit(RLIMIT_NOFILE, &none);
    const auto spent = processorSeconds();
    client.connectTo(served.port);
    client.send(kRequest);
    EXPECT_TRUE(fakes::staysTrue([&] { return client.receiveSome() && !client.begun(); }, milliseconds(200)));
    EXPECT_LT(processorSeconds() - spent, 0.1);
    setrlimit(RLIMIT_NOFILE, &before);
    EXPECT_EQ(client.receiveAll(), responseWith(kDirect));
}

// Everything at once; what it is for shows under ThreadSanitizer.
TEST(PACServer, StartStopAndUpdateComeFromAnyThread) {
    Served served;
    std::atomic<int> answered = 0;
    {
        std::vector<std::jthread> threads;
        for (int number = 0; number < 2; ++number) {
            threads.emplace_back([&] {
                for (int round = 0; round < 20; ++round) {
                    served.server.stop();
                    served.server.start();
                    served.server.update(std::string(1000, 'x'));
                }
            });
            threads.emplace_back([&] {
                for (int round = 0; round < 20; ++round) {
                    answered += served.answerTo(kRequest).empty() ? 0 : 1;
                }
            });
        }
    }
    EXPECT_EQ(served.answerTo(kRequest), responseWith(std::string(1000, 'x')));
    EXPECT_LE(answered, 40);
}

TEST(PACServer, CurlFetchesIt) {
    Served served;
    served.server.update("Hà Nội");
    const auto command =
        "curl --silent --show-error --noproxy '*' --include --max-time 20 " + served.server.pacURL();
    auto* const curl = popen(command.c_str(), "r");
    ASSERT_NE(curl, nullptr);
    std::string text;
    for (int byte = fgetc(curl); byte != EOF; byte = fgetc(curl)) {
        text += static_cast<char>(byte);
    }
    EXPECT_EQ(pclose(curl), 0);
    EXPECT_EQ(text, responseWith("Hà Nội"));
}

} // namespace
} // namespace fernwick
