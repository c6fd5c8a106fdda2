// HTTP answered from a script.
// Threads: the test's thread.
#pragma once

#include "platform/Dispatch.h"
#include "platform/FileSystem.h"
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

    // The dispatch outlives the client, and so do the files, into which downloads go; without them each fails.
    explicit FakeHttpClient(platform::Dispatch& dispatch, platform::FileSystem* files = nullptr)
        : dispatch_(dispatch), files_(files) {}
    FakeHttpClient(const FakeHttpClient&) = delete;
    FakeHttpClient& operator=(const FakeHttpClient&) = delete;
    ~FakeHttpClient() override { *alive_ = false; }

    // Records the request, and answers it with the next answer, of which the last one stays; without any as a
    // machine does on which nobody listens.
    void send(platform::HttpRequest request, std::function<void(platform::HttpResult)> finished) override {
        auto answer = answerTo(std::move(request));
        if (*answer.result && (*answer.result)->body.size() > requests_.back().maximumBytes) {
            answer.result = std::unexpected(platform::HttpError{"The answer is too long"});
        }
        dispatch_.mainAfter(answer.delay, [alive = alive_, result = *std::move(answer.result),
                                           finished = std::move(finished)]() mutable {
            if (*alive) {
                finished(std::move(result));
            }
        });
    }

    // The same, into a new file of the folder. The delay of an answer is a silence.
    void download(platform::HttpRequest request, std::string folder,
                  std::function<void(platform::HttpDownloadResult)> finished) override {
        auto answer = answerTo(std::move(request));
        dispatch_.mainAfter(answer.delay, [this, alive = alive_, result = *std::move(answer.result),
                                           folder = std::move(folder), finished = std::move(finished)] {
            if (*alive) {
                finished(result ? fileOf(*result, folder) : std::unexpected(result.error()));
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

    // The answer to come, which holds a result.
    Answer answerTo(platform::HttpRequest request) {
        auto answer = nextAnswer();
        if (!answer.result || answer.delay > request.timeLimit) {
            answer = {std::unexpected(platform::HttpError{"The request timed out"}), request.timeLimit};
        }
        requests_.push_back(std::move(request));
        return answer;
    }

    platform::HttpDownloadResult fileOf(const platform::HttpResponse& response, const std::string& folder) {
        if (files_ == nullptr) {
            return std::unexpected(platform::HttpError{"No such file or directory"});
        }
        const auto path = folder + "/FernwickDownload_" + std::to_string(++downloads_);
        const auto written = files_->write(path, response.body, platform::kOwnerOnlyFile);
        return written ? platform::HttpDownloadResult(path)
                       : std::unexpected(platform::HttpError{written.error().description});
    }

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
    platform::FileSystem* files_;
    int downloads_ = 0;
    std::deque<Answer> answers_;
    std::vector<platform::HttpRequest> requests_;
    std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

} // namespace fernwick::fakes
