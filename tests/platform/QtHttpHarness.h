// The real HTTP client, and a server on loopback that it asks. Threads: the test's thread.
#pragma once

#include "QtHarness.h"
#include "platform/qt/QtHttpClient.h"
#include "support/StandInServer.h"
#include "support/TemporaryFolder.h"
#include "support/WaitUntil.h"

#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace fernwick::platform {

class QtHttpHarness {
public:
    HttpClient* client() { return client_.get(); }
    void destroyClient() { client_.reset(); }

    template <class Condition>
    [[nodiscard]] bool waitUntil(Condition condition) {
        return qt_.waitUntil(condition);
    }
    // Longer than the time limit of any request that a test lets run out.
    void settle() {
        (void)fakes::staysTrue(
            [] {
                QCoreApplication::processEvents();
                return true;
            },
            std::chrono::milliseconds(100));
    }

    // At least so many bytes, no piece of which is like another.
    [[nodiscard]] static std::string longBody(std::size_t size) {
        std::string body;
        for (int number = 0; body.size() < size; ++number) {
            body += std::to_string(number);
        }
        return body;
    }

    [[nodiscard]] std::string url() const { return base_ + "/version"; }
    void answer(int status, const std::string& body) {
        serveAnew();
        server_->answer(status, body);
    }
    void stayAway() { serveAnew(); }
    void refuse() {
        serveAnew();
        server_.reset();
    }
    void answer(fakes::StandInServer::Answer answer) {
        serveAnew();
        server_->answer(std::move(answer));
    }
    [[nodiscard]] const fakes::StandInServer& server() const { return *server_; }

    [[nodiscard]] std::string folder() const { return folder_.path(); }
    [[nodiscard]] std::vector<std::string> files() const {
        std::vector<std::string> paths;
        for (const auto& entry : std::filesystem::directory_iterator(folder_.path())) {
            paths.push_back(entry.path().string());
        }
        return paths;
    }
    [[nodiscard]] static std::string content(const std::string& path) {
        std::ifstream file(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    [[nodiscard]] static unsigned mode(const std::string& path) {
        return static_cast<unsigned>(std::filesystem::symlink_status(path).permissions());
    }

private:
    void serveAnew() {
        server_ = std::make_unique<fakes::StandInServer>();
        base_ = server_->base();
    }

    QtHarness qt_;
    fakes::TemporaryFolder folder_;
    std::unique_ptr<fakes::StandInServer> server_;
    std::string base_;
    std::unique_ptr<QtHttpClient> client_ = std::make_unique<QtHttpClient>(qt_.dispatch());
};

} // namespace fernwick::platform
