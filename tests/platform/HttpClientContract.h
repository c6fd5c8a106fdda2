// What every HttpClient does, the fake one and the real one.
#pragma once

#include "platform/HttpClient.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace fernwick::platform {

// `Harness` has client(), which is null after destroyClient(); waitUntil(condition), which turns the main
// queue, and settle(), which turns it until nothing more is to be expected; url(), where a server listens that
// it tells how to answer: answer(status, body), stayAway(), refuse(). Downloads go to folder(), of which it
// tells the files, with what is in one and its permission bits: files(), content(path), mode(path).
template <class Harness>
class HttpClientContract : public testing::Test {
protected:
    void send(HttpRequest request) {
        harness_.client()->send(std::move(request),
                                [this](HttpResult result) { results_.push_back(std::move(result)); });
    }
    void download(HttpRequest request) {
        harness_.client()->download(std::move(request), harness_.folder(), [this](HttpDownloadResult result) {
            downloads_.push_back(std::move(result));
        });
    }
    HttpRequest get() { return {.method = "GET", .url = harness_.url()}; }
    [[nodiscard]] bool waitForResult() {
        return harness_.waitUntil([this] { return !results_.empty(); });
    }

    [[nodiscard]] bool waitForDownload() {
        return harness_.waitUntil([this] { return !downloads_.empty(); });
    }

    std::vector<HttpResult> results_;
    std::vector<HttpDownloadResult> downloads_;
    Harness harness_;
};

TYPED_TEST_SUITE_P(HttpClientContract);

TYPED_TEST_P(HttpClientContract, AnswerWithAnyStatusIsAnAnswer) {
    for (const int status : {200, 201, 301, 302, 400, 401, 404, 408, 418, 500, 501, 503, 504}) {
        const std::string body = R"({"message":"status )" + std::to_string(status) + "\"}";
        this->harness_.answer(status, body);
        this->results_.clear();
        this->send(this->get());
        ASSERT_TRUE(this->waitForResult()) << status;
        ASSERT_TRUE(this->results_.front()) << this->results_.front().error().description;
        EXPECT_EQ(this->results_.front()->status, status);
        EXPECT_EQ(this->results_.front()->body, body);
    }
}

TYPED_TEST_P(HttpClientContract, NoContentIsAnAnswerWithoutABody) {
    this->harness_.answer(204, "");
    this->send({.method = "PUT",
                .url = this->harness_.url(),
                .headers = {{"Content-Type", "application/json"}},
                .body = R"({"path":"/"})"});
    ASSERT_TRUE(this->waitForResult());
    ASSERT_TRUE(this->results_.front());
    EXPECT_EQ(this->results_.front()->status, 204);
    EXPECT_EQ(this->results_.front()->body, "");
}

TYPED_TEST_P(HttpClientContract, HandlerIsCalledLaterAndOnce) {
    this->harness_.answer(200, "body");
    this->send(this->get());
    EXPECT_TRUE(this->results_.empty());
    ASSERT_TRUE(this->waitForResult());
    this->harness_.settle();
    EXPECT_EQ(this->results_.size(), 1U);
}

TYPED_TEST_P(HttpClientContract, RefusedConnectionIsAnError) {
    this->harness_.refuse();
    this->send(this->get());
    EXPECT_TRUE(this->results_.empty());
    ASSERT_TRUE(this->waitForResult());
    ASSERT_FALSE(this->results_.front());
    EXPECT_FALSE(this->results_.front().error().description.empty());
    this->harness_.settle();
    EXPECT_EQ(this->results_.size(), 1U);
}

TYPED_TEST_P(HttpClientContract, SilenceIsAnErrorWhenTheTimeIsUp) {
    this->harness_.stayAway();
    auto request = this->get();
    request.timeLimit = std::chrono::milliseconds(50);
    this->send(std::move(request));
    ASSERT_TRUE(this->waitForResult());
    ASSERT_FALSE(this->results_.front());
    EXPECT_EQ(this->results_.front().error().description, "The request timed out");
    this->harness_.settle();
    EXPECT_EQ(this->results_.size(), 1U);
}

TYPED_TEST_P(HttpClientContract, LongestBodyIsAnAnswerAndALongerOneAnError) {
    for (const std::size_t limit : {std::size_t{1000}, std::size_t{999}}) {
        this->harness_.answer(200, std::string(1000, 'x'));
        this->results_.clear();
        auto request = this->get();
        request.maximumBytes = limit;
        this->send(std::move(request));
        ASSERT_TRUE(this->waitForResult());
        EXPECT_EQ(this->results_.front().has_value(), limit == 1000) << limit;
    }
}

TYPED_TEST_P(HttpClientContract, DestructionGivesUpWhatIsUnderWay) {
    this->harness_.answer(200, "body");
    this->send(this->get());
    this->send({.method = "GET", .url = "nonsense"});
    this->harness_.destroyClient();
    this->harness_.settle();
    EXPECT_TRUE(this->results_.empty());
}

TYPED_TEST_P(HttpClientContract, HandlerMaySendAgain) {
    this->harness_.answer(200, "body");
    this->harness_.client()->send(this->get(), [this](const HttpResult&) { this->send(this->get()); });
    ASSERT_TRUE(this->waitForResult());
    EXPECT_TRUE(this->results_.front());
}

TYPED_TEST_P(HttpClientContract, HandlerMayDestroyTheClient) {
    this->harness_.answer(200, "body");
    bool called = false;
    this->harness_.client()->send(this->get(), [&](const HttpResult& result) {
        EXPECT_TRUE(result);
        this->harness_.destroyClient();
        called = true;
    });
    this->send(this->get());
    EXPECT_TRUE(this->harness_.waitUntil([&] { return called; }));
    this->harness_.settle();
}

TYPED_TEST_P(HttpClientContract, DownloadOfAnyStatusIsAFileOfTheOwners) {
    for (const int status : {200, 404, 500}) {
        const std::string body = "body of " + std::to_string(status) + std::string(3, '\0');
        this->harness_.answer(status, body);
        this->downloads_.clear();
        this->download(this->get());
        EXPECT_TRUE(this->downloads_.empty());
        ASSERT_TRUE(this->waitForDownload());
        this->harness_.settle();
        ASSERT_EQ(this->downloads_.size(), 1U);
        ASSERT_TRUE(this->downloads_.front()) << this->downloads_.front().error().description;
        const auto& path = *this->downloads_.front();
        EXPECT_TRUE(path.starts_with(this->harness_.folder() + "/")) << path;
        EXPECT_EQ(this->harness_.content(path), body);
        EXPECT_EQ(this->harness_.mode(path), 0600U);
    }
    EXPECT_EQ(this->harness_.files().size(), 3U) << "each has a file of its own";
}

TYPED_TEST_P(HttpClientContract, DownloadThatFailsLeavesNoFile) {
    this->harness_.refuse();
    this->download(this->get());
    ASSERT_TRUE(this->waitForDownload());
    ASSERT_FALSE(this->downloads_.front());
    EXPECT_FALSE(this->downloads_.front().error().description.empty());
    this->downloads_.clear();
    this->harness_.stayAway();
    auto request = this->get();
    request.timeLimit = std::chrono::milliseconds(50);
    this->download(std::move(request));
    ASSERT_TRUE(this->waitForDownload());
    ASSERT_FALSE(this->downloads_.front());
    EXPECT_TRUE(this->harness_.files().empty());
}

TYPED_TEST_P(HttpClientContract, DownloadMayBeLongerThanAnAnswer) {
    this->harness_.answer(200, std::string(1000, 'x'));
    auto request = this->get();
    request.maximumBytes = 10;
    this->download(std::move(request));
    ASSERT_TRUE(this->waitForDownload());
    EXPECT_TRUE(this->downloads_.front());
}

TYPED_TEST_P(HttpClientContract, DestructionGivesUpDownloadsAndLeavesNoFile) {
    this->harness_.stayAway();
    this->download(this->get());
    this->harness_.destroyClient();
    this->harness_.settle();
    EXPECT_TRUE(this->downloads_.empty());
    EXPECT_TRUE(this->harness_.files().empty());
}

REGISTER_TYPED_TEST_SUITE_P(HttpClientContract, AnswerWithAnyStatusIsAnAnswer, NoContentIsAnAnswerWithoutABody,
                            HandlerIsCalledLaterAndOnce, RefusedConnectionIsAnError,
                            SilenceIsAnErrorWhenTheTimeIsUp, LongestBodyIsAnAnswerAndALongerOneAnError,
                            DestructionGivesUpWhatIsUnderWay, HandlerMaySendAgain, HandlerMayDestroyTheClient,
                            DownloadOfAnyStatusIsAFileOfTheOwners, DownloadThatFailsLeavesNoFile,
                            DownloadMayBeLongerThanAnAnswer, DestructionGivesUpDownloadsAndLeavesNoFile);

} // namespace fernwick::platform
