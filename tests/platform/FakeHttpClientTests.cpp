#include "HttpClientContract.h"
#include "support/FakeDispatch.h"
#include "support/FakeFileSystem.h"
#include "support/FakeHttpClient.h"

namespace fernwick::platform {

namespace {

class FakeHttpHarness {
public:
    HttpClient* client() { return client_.get(); }
    void destroyClient() { client_.reset(); }

    template <class Condition>
    [[nodiscard]] bool waitUntil(Condition condition) {
        for (int step = 0; step < 100 && !condition(); ++step) {
            dispatch_.advance(Duration{10});
        }
        return condition();
    }
    void settle() { dispatch_.advance(std::chrono::hours(1)); }

    static std::string url() { return "http://127.0.0.1:9090/version"; }
    void answer(int status, const std::string& body) {
        client_->forget();
        client_->answer(status, body);
    }
    void stayAway() {
        client_->forget();
        client_->stayAway();
    }
    void refuse() {
        client_->forget();
        client_->refuse();
    }

    static std::string folder() { return "/downloads"; }
    [[nodiscard]] std::vector<std::string> files() const {
        std::vector<std::string> paths;
        for (const auto& [path, file] : disk_.files) {
            paths.push_back(path);
        }
        return paths;
    }
    [[nodiscard]] std::string content(const std::string& path) const { return disk_.files.at(path).bytes; }
    [[nodiscard]] unsigned mode(const std::string& path) const { return disk_.files.at(path).mode; }

private:
    fakes::FakeDispatch dispatch_;
    fakes::FakeFileSystem disk_;
    std::unique_ptr<fakes::FakeHttpClient> client_ = std::make_unique<fakes::FakeHttpClient>(dispatch_, &disk_);
};

} // namespace

INSTANTIATE_TYPED_TEST_SUITE_P(Fake, HttpClientContract, FakeHttpHarness);

} // namespace fernwick::platform
