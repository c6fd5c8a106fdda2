// Outside commands answered from a script.
// Threads: any; the answers are given in the order of the calls.
#pragma once

#include "platform/CommandRunner.h"

#include <deque>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <vector>

namespace fernwick::fakes {

class FakeCommandRunner final : public platform::CommandRunner {
public:
    using Answer = std::expected<platform::CommandResult, platform::LaunchError>;

    // Records the request and answers it: by the responder if there is one; otherwise by the next answer for
    // that executable, whose last one stays; otherwise as a system does on which the executable is missing.
    [[nodiscard]] Answer run(const platform::CommandRequest& request) override;

    // Adds an answer for an executable, given by its whole path.
    void answer(const std::string& executable, Answer answer);

    // Answers every request from now on by a function, which may also do what the command would do.
    void setResponder(std::function<Answer(const platform::CommandRequest&)> responder);

    [[nodiscard]] std::vector<platform::CommandRequest> requests() const;

    // The requests as lines, the words joined with one blank.
    [[nodiscard]] std::vector<std::string> lines() const;

private:
    mutable std::mutex mutex_;
    std::map<std::string, std::deque<Answer>> answers_;
    std::function<Answer(const platform::CommandRequest&)> responder_;
    std::vector<platform::CommandRequest> requests_;
};

} // namespace fernwick::fakes
