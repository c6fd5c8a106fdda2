// HTTP answered from a script.
// Threads: the test's thread.
#pragma once

#include "platform/Dispatch.h"
#include "platform/HttpClient.h"

#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace fernwick::fakes {

class FakeHttpClient final : public platform::HttpClient {
public:
    // What comes back; without a result nothing does, until the request's time is up.
    struct Answer {
        std::optional<platform::HttpResult> result;
        platform::Duration delay{0};
    };

    // The dispatch outlives the client.
    explicit FakeHttpClient(platform::Dispatch& dispatch) : dispatch_(dispatch) {}
    FakeHttpClient(const FakeHttpClient&) = delete;
    FakeHttpClient& operator=(const FakeHttpClient&) = delete;
    ~FakeHttpClient() override { *alive_ = false; }

    // Records the request, and answers it with the next answer, of which the last one stays; without any as a
    // machine does on which nobody listens.
    void send(platform::HttpRequest request, std::function<void(platform::HttpResult)> finished) override {
        auto answer = nextAnswer();
        if (!answer.result || answer.delay > request.timeLimit) {
            answer = {std::unexpected(platform::HttpError{"The request timed out"}), request.timeLimit};
        } else if (*answer.result && (*answer.result)->body.size() > request.maximumBytes) {
            answer.result = std::unexpected(platform::HttpError{"The answer is too long"});
        }
        requests_.push_back(std::move(request));
        dispatch_.mainAfter(answer.delay, [alive = alive_, result = *std::move(answer.result),
                                           finished = std::move(finished)]() mutable {
            if (*alive) {
                finished(std::move(result));
            }
        });
    }

    // Adds answers.
    void answer(int status, std::string body = {}) {
        answers_.push_back({platform::HttpResponse{status, std::move(body)}});
    }
    void refuse() { answers_.push_back(refusal()); }
    void stayAway() { answers_.push_back({std::nullopt}); }
    void answer(Answer answer) { answers_.push_back(std::move(answer)); }

    // Forgets the answers that are left, so that the next one given counts.
    void forget() { answers_.clear(); }

    [[nodiscard]] const std::vector<platform::HttpRequest>& requests() const { return requests_; }

    // The requests as "METHOD url".
    [[nodiscard]] std::vector<std::string> lines() const {
        std::vector<std::string> lines;
        for (const auto& request : requests_) {
            lines.push_back(request.method + " " + request.url);
        }
        return lines;
    }

private:
    static Answer refusal() { return {std::unexpected(platform::HttpError{"Connection refused"})}; }

    Answer nextAnswer() {
        if (answers_.empty()) {
            return refusal();
        }
        auto next = answers_.front();
        if (answers_.size() > 1) {
            answers_.pop_front();
        }
        return next;
    }

    platform::Dispatch& dispatch_;
    std::deque<Answer> answers_;
    std::vector<platform::HttpRequest> requests_;
    std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

} // namespace fernwick::fakes
