#include "HttpClientContract.h"
#include "support/FakeDispatch.h"
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
    void stayAway() { client_->stayAway(); }
    void refuse() { client_->refuse(); }

private:
    fakes::FakeDispatch dispatch_;
    std::unique_ptr<fakes::FakeHttpClient> client_ = std::make_unique<fakes::FakeHttpClient>(dispatch_);
};

} // namespace

INSTANTIATE_TYPED_TEST_SUITE_P(Fake, HttpClientContract, FakeHttpHarness);

} // namespace fernwick::platform
