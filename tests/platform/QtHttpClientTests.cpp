#include "HttpClientContract.h"
#include "QtHttpHarness.h"

#include <cstdlib>

namespace fernwick::platform {

namespace {

using namespace std::chrono_literals;
using fakes::StandInServer;
using End = StandInServer::End;

class QtHttpClientTest : public testing::Test {
protected:
    // What comes of a request to the server.
    HttpResult resultOf(HttpRequest request) {
        std::optional<HttpResult> told;
        harness_.client()->send(std::move(request), [&](HttpResult result) {
            EXPECT_FALSE(told);
            told = std::move(result);
        });
        EXPECT_FALSE(told);
        EXPECT_TRUE(harness_.waitUntil([&] { return told.has_value(); }));
        harness_.settle();
        return told.value_or(std::unexpected(HttpError{"no result at all"}));
    }
    HttpResult get(std::chrono::milliseconds limit = 20s, std::size_t maximumBytes = 16U << 20U) {
        return resultOf(
            {.method = "GET", .url = harness_.url(), .timeLimit = limit, .maximumBytes = maximumBytes});
    }

    QtHttpHarness harness_;
};

} // namespace

INSTANTIATE_TYPED_TEST_SUITE_P(Qt, HttpClientContract, QtHttpHarness);

TEST_F(QtHttpClientTest, RequestArrivesAsItWasMade) {
    harness_.answer(204, "");
    const std::string body = R"({"path":"/home/tên/config.yaml"})";
    ASSERT_TRUE(resultOf({.method = "PUT",
                          .url = harness_.url() + "?force=true",
                          .headers = {{"Content-Type", "application/json"}},
                          .body = body}));
    const auto requests = harness_.server().requests();
    ASSERT_EQ(requests.size(), 1U);
    EXPECT_TRUE(requests[0].head.starts_with("PUT /version?force=true HTTP/1.1\r\n")) << requests[0].head;
    EXPECT_TRUE(requests[0].head.contains("Content-Type: application/json\r\n")) << requests[0].head;
    EXPECT_EQ(requests[0].body, body);
}

TEST_F(QtHttpClientTest, RequestWithoutABodyHasNone) {
    harness_.answer(200, "ok");
    ASSERT_TRUE(get());
    const auto request = harness_.server().requests().at(0);
    EXPECT_TRUE(request.head.starts_with("GET /version HTTP/1.1\r\n")) << request.head;
    EXPECT_FALSE(request.head.contains("Content-Length")) << request.head;
    EXPECT_FALSE(request.head.contains("Content-Type")) << request.head;
}

TEST_F(QtHttpClientTest, ProxyOfTheEnvironmentIsNotAsked) {
    StandInServer proxy;
    setenv("http_proxy", proxy.base().c_str(), 1); // NOLINT(concurrency-mt-unsafe): before any client
    proxy.answer(200, "from the proxy");
    harness_.answer(200, "from the server");
    EXPECT_EQ(get()->body, "from the server");
    EXPECT_TRUE(proxy.requests().empty());
    unsetenv("http_proxy"); // NOLINT(concurrency-mt-unsafe)
}

TEST_F(QtHttpClientTest, RedirectIsNotFollowed) {
    StandInServer elsewhere;
    elsewhere.answer(200, "elsewhere");
    harness_.answer({"HTTP/1.1 302 Found\r\nLocation: " + elsewhere.base() + "/\r\nContent-Length: 0\r\n\r\n"});
    const auto result = get();
    ASSERT_TRUE(result);
    EXPECT_EQ(result->status, 302);
    EXPECT_TRUE(elsewhere.requests().empty());
}

TEST_F(QtHttpClientTest, CookiesAreNotKept) {
    harness_.answer({"HTTP/1.1 200 OK\r\nSet-Cookie: name=value\r\nContent-Length: 0\r\n\r\n", End::hold});
    ASSERT_TRUE(get());
    ASSERT_TRUE(get());
    const auto requests = harness_.server().requests();
    ASSERT_EQ(requests.size(), 2U);
    EXPECT_FALSE(requests[1].head.contains("Cookie")) << requests[1].head;
}

TEST_F(QtHttpClientTest, AnswerAByteASecondIsAnErrorWhenTheTimeIsUp) {
    harness_.answer({"HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\nok", End::hold, 1s});
    const auto start = std::chrono::steady_clock::now();
    const auto result = get(150ms);
    ASSERT_FALSE(result);
    EXPECT_EQ(result.error().description, "The request timed out");
    EXPECT_LT(std::chrono::steady_clock::now() - start, 10s);
}

TEST_F(QtHttpClientTest, SlowBodyDoesNotWinTimeByKeepingOn) {
    harness_.answer(
        {"HTTP/1.1 200 OK\r\nContent-Length: 1000000\r\n\r\n" + std::string(1000, 'x'), End::hold, 2ms});
    const auto result = get(300ms);
    ASSERT_FALSE(result);
    EXPECT_EQ(result.error().description, "The request timed out");
}

TEST_F(QtHttpClientTest, GarbageIsAnError) {
    for (const auto end : {End::close, End::hold}) {
        harness_.answer({"SSH-2.0-OpenSSH_9.2\r\n\x01\x02\xff garbage\r\n\r\n", end});
        const auto result = get();
        ASSERT_FALSE(result);
        EXPECT_FALSE(result.error().description.empty());
    }
}

TEST_F(QtHttpClientTest, ConnectionThatIsClosedWithoutAWordIsAnError) {
    harness_.answer({"", End::close});
    EXPECT_FALSE(get());
}

TEST_F(QtHttpClientTest, ResetConnectionIsAnError) {
    harness_.answer({"", End::reset});
    EXPECT_FALSE(get());
    harness_.answer({"HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\nhalf", End::reset});
    EXPECT_FALSE(get());
}

TEST_F(QtHttpClientTest, AnswerThatBreaksOffIsAnError) {
    harness_.answer({"HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\nhalf"});
    EXPECT_FALSE(get());
}

TEST_F(QtHttpClientTest, AnswerWithoutALengthEndsWithItsConnection) {
    harness_.answer({"HTTP/1.1 200 OK\r\n\r\nall of it"});
    const auto result = get();
    ASSERT_TRUE(result);
    EXPECT_EQ(result->body, "all of it");
}

TEST_F(QtHttpClientTest, LongAnswerComesWhole) {
    const auto body = QtHttpHarness::longBody(6'000'000);
    harness_.answer(200, body);
    const auto result = get();
    ASSERT_TRUE(result) << result.error().description;
    EXPECT_TRUE(result->body == body);
}

TEST_F(QtHttpClientTest, EndlessAnswerIsGivenUp) {
    harness_.answer({"HTTP/1.1 200 OK\r\n\r\n" + std::string(60'000, 'x'), End::close, 0ms, true});
    const auto result = get(20s, 1'000'000);
    ASSERT_FALSE(result);
    EXPECT_EQ(result.error().description, "The answer is too long");
}

TEST_F(QtHttpClientTest, WhatIsNoHttpAddressIsAnError) {
    for (const char* url : {"", "nonsense", "file:///etc/hostname", "data:,text", "ftp://127.0.0.1/", "http://",
                            "http://exa mple.com/"}) {
        const auto result = resultOf({.method = "GET", .url = url});
        ASSERT_FALSE(result) << url;
        EXPECT_EQ(result.error().description, "The address is none of HTTP") << url;
    }
}

TEST_F(QtHttpClientTest, ManyAtOnceGetTheirOwnAnswers) {
    harness_.answer(200, "body");
    int answered = 0;
    for (int number = 0; number < 50; ++number) {
        harness_.client()->send({.method = "GET", .url = harness_.url()}, [&](const HttpResult& result) {
            answered += result && result->body == "body" ? 1 : 0;
        });
    }
    EXPECT_TRUE(harness_.waitUntil([&] { return answered == 50; }));
}

} // namespace fernwick::platform
