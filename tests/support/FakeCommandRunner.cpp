#include "support/FakeCommandRunner.h"

#include <cerrno>

namespace fernwick::fakes {

FakeCommandRunner::Answer FakeCommandRunner::run(const platform::CommandRequest& request) {
    std::unique_lock lock(mutex_);
    requests_.push_back(request);
    if (responder_) {
        const auto responder = responder_;
        lock.unlock();
        return responder(request);
    }
    const auto found = answers_.find(request.executable);
    if (found == answers_.end()) {
        return std::unexpected(platform::LaunchError{ENOENT, "No such file or directory"});
    }
    auto answer = found->second.front();
    if (found->second.size() > 1) {
        found->second.pop_front();
    }
    return answer;
}

void FakeCommandRunner::answer(const std::string& executable, Answer answer) {
    const std::lock_guard lock(mutex_);
    answers_[executable].push_back(std::move(answer));
}

void FakeCommandRunner::setResponder(std::function<Answer(const platform::CommandRequest&)> responder) {
    const std::lock_guard lock(mutex_);
    responder_ = std::move(responder);
}

std::vector<platform::CommandRequest> FakeCommandRunner::requests() const {
    const std::lock_guard lock(mutex_);
    return requests_;
}

std::vector<std::string> FakeCommandRunner::lines() const {
    std::vector<std::string> lines;
    for (const auto& request : requests()) {
        auto& line = lines.emplace_back(request.executable);
        for (const auto& argument : request.arguments) {
            line += ' ' + argument;
        }
    }
    return lines;
}

} // namespace fernwick::fakes
