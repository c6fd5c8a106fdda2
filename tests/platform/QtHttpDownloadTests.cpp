// Downloads by the real client: silence, redirects, bodies that break off, and disks that are full.
#include "QtHttpHarness.h"

#include <gtest/gtest.h>

#include <csignal>
#include <optional>
#include <sys/resource.h>

namespace fernwick::platform {

namespace {

using namespace std::chrono_literals;
using fakes::StandInServer;
using End = StandInServer::End;

class QtHttpDownload : public testing::Test {
protected:
    HttpDownloadResult resultOf(HttpRequest request, const std::string& folder) {
        std::optional<HttpDownloadResult> told;
        harness_.client()->download(std::move(request), folder, [&](HttpDownloadResult result) {
            EXPECT_FALSE(told);
            told = std::move(result);
        });
        EXPECT_FALSE(told);
        EXPECT_TRUE(harness_.waitUntil([&] { return told.has_value(); }));
        harness_.settle();
        return told.value_or(std::unexpected(HttpError{"no result at all"}));
    }
    HttpDownloadResult get(std::chrono::milliseconds limit = 20s, bool follows = false) {
        return resultOf(
            {.method = "GET", .url = harness_.url(), .timeLimit = limit, .followsRedirects = follows},
            harness_.folder());
    }

    QtHttpHarness harness_;
};

// What a server says to send a client elsewhere.
StandInServer::Answer redirect(const std::string& url, int status = 302) {
    return {"HTTP/1.1 " + std::to_string(status) + " Elsewhere\r\nLocation: " + url +
            "\r\nContent-Length: 5\r\n\r\nmoved"};
}

// No file of this process grows beyond so many bytes, as long as this lives.
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t bytes) {
        (void)std::signal(SIGXFSZ, SIG_IGN); // write(2) tells it then
        getrlimit(RLIMIT_FSIZE, &before_);
        const rlimit limit{bytes, before_.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;
    ~FileSizeLimit() {
        setrlimit(RLIMIT_FSIZE, &before_);
        (void)std::signal(SIGXFSZ, SIG_DFL);
    }

private:
    rlimit before_{};
};

} // namespace

TEST_F(QtHttpDownload, LongBodyComesWhole) {
    const auto body = QtHttpHarness::longBody(20'000'000);
    harness_.answer(200, body);
    const auto path = get();
    ASSERT_TRUE(path) << path.error().description;
    EXPECT_TRUE(QtHttpHarness::content(*path) == body);
}

TEST_F(QtHttpDownload, EmptyBodyIsAnEmptyFile) {
    harness_.answer(200, "");
    const auto path = get();
    ASSERT_TRUE(path);
    EXPECT_EQ(QtHttpHarness::content(*path), "");
}

TEST_F(QtHttpDownload, SlowBodyThatKeepsOnComesWhole) {
    harness_.answer({"HTTP/1.1 200 OK\r\nContent-Length: 300\r\n\r\n" + std::string(300, 'x'), End::hold, 2ms});
    const auto path = get(300ms); // all of it takes longer
    ASSERT_TRUE(path) << path.error().description;
    EXPECT_EQ(QtHttpHarness::content(*path).size(), 300U);
}

TEST_F(QtHttpDownload, SilenceInTheMiddleIsAnErrorAndLeavesNothing) {
    harness_.answer({"HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\nhalf", End::hold});
    const auto path = get(150ms);
    ASSERT_FALSE(path);
    EXPECT_EQ(path.error().description, "The request timed out");
    EXPECT_TRUE(harness_.files().empty());
}

TEST_F(QtHttpDownload, BodyThatBreaksOffIsAnErrorAndLeavesNothing) {
    for (const auto end : {End::close, End::reset}) {
        harness_.answer({"HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\nhalf", end});
        const auto path = get();
        ASSERT_FALSE(path);
        EXPECT_FALSE(path.error().description.empty());
        EXPECT_TRUE(harness_.files().empty());
    }
}

TEST_F(QtHttpDownload, DestructionInTheMiddleLeavesNothing) {
    harness_.answer({"HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\nhalf", End::hold});
    bool told = false;
    harness_.client()->download({.method = "GET", .url = harness_.url()}, harness_.folder(),
                                [&](const HttpDownloadResult&) { told = true; });
    ASSERT_TRUE(harness_.waitUntil([&] {
        const auto files = harness_.files();
        return !files.empty() && QtHttpHarness::content(files[0]) == "half";
    }));
    harness_.destroyClient();
    EXPECT_TRUE(harness_.files().empty());
    harness_.settle();
    EXPECT_FALSE(told);
}

TEST_F(QtHttpDownload, FullDiskIsAnErrorInTheSystemsWords) {
    harness_.answer(200, std::string(3'000'000, 'x'));
    std::optional<HttpDownloadResult> path;
    {
        const FileSizeLimit limit(1'000'000);
        path = get();
    }
    ASSERT_FALSE(*path);
    EXPECT_EQ(path->error().description, "File too large");
    EXPECT_TRUE(harness_.files().empty());
}

TEST_F(QtHttpDownload, FolderThatIsMissingIsAnError) {
    harness_.answer(200, "body");
    const auto path = resultOf({.method = "GET", .url = harness_.url()}, harness_.folder() + "/none");
    ASSERT_FALSE(path);
    EXPECT_EQ(path.error().description, "No such file or directory");
    EXPECT_TRUE(harness_.server().requests().empty());
}

TEST_F(QtHttpDownload, WhatIsNoHttpAddressIsAnErrorAndLeavesNothing) {
    for (const char* url : {"", "F.zip", "file:///etc/hostname", "ftp://127.0.0.1/F.zip"}) {
        const auto path = resultOf({.method = "GET", .url = url}, harness_.folder());
        ASSERT_FALSE(path) << url;
        EXPECT_EQ(path.error().description, "The address is none of HTTP") << url;
    }
    EXPECT_TRUE(harness_.files().empty());
}

TEST_F(QtHttpDownload, RedirectIsFollowedWhereTheRequestSaysSo) {
    for (const int status : {301, 302, 303, 307, 308}) {
        StandInServer elsewhere;
        elsewhere.answer(200, "elsewhere");
        harness_.answer(redirect(elsewhere.base() + "/F.zip", status));
        const auto stayed = get();
        ASSERT_TRUE(stayed) << status;
        EXPECT_EQ(QtHttpHarness::content(*stayed), "moved") << status;
        EXPECT_TRUE(elsewhere.requests().empty()) << status;
        const auto followed = get(20s, true);
        ASSERT_TRUE(followed) << followed.error().description;
        EXPECT_EQ(QtHttpHarness::content(*followed), "elsewhere") << status;
        ASSERT_EQ(elsewhere.requests().size(), 1U);
        EXPECT_TRUE(elsewhere.requests()[0].head.starts_with("GET /F.zip HTTP/1.1\r\n"));
    }
}

TEST_F(QtHttpDownload, RedirectToAnotherKindOfAddressIsNotFollowed) {
    for (const char* url : {"file:///etc/hostname", "ftp://127.0.0.1/F.zip", "data:,text"}) {
        harness_.answer(redirect(url));
        EXPECT_FALSE(get(20s, true)) << url;
        EXPECT_TRUE(harness_.files().empty()) << url;
    }
}

TEST_F(QtHttpDownload, RedirectInACircleIsAnError) {
    harness_.answer(redirect("/version")); // where it was asked already
    EXPECT_FALSE(get(20s, true));
    EXPECT_TRUE(harness_.files().empty());
}

TEST_F(QtHttpDownload, AnswerFollowsRedirectsToo) {
    StandInServer elsewhere;
    elsewhere.answer(200, "elsewhere");
    harness_.answer(redirect(elsewhere.base() + "/api/update"));
    std::optional<HttpResult> told;
    harness_.client()->send({.method = "GET", .url = harness_.url(), .followsRedirects = true},
                            [&](HttpResult result) { told = std::move(result); });
    ASSERT_TRUE(harness_.waitUntil([&] { return told.has_value(); }));
    ASSERT_TRUE(*told);
    EXPECT_EQ((*told)->status, 200);
    EXPECT_EQ((*told)->body, "elsewhere");
}

} // namespace fernwick::platform
