#include "routing/SilentInstall.h"

#include <algorithm>
#include <utility>

namespace fernwick {

SilentInstall::SilentInstall(platform::Dispatch& dispatch, platform::FileSystem& files,
                             platform::Processes& processes, const platform::HostEnvironment& host,
                             std::vector<std::string> brewCandidates)
    : dispatch_(dispatch),
      files_(files),
      processes_(processes),
      host_(host),
      brewCandidates_(std::move(brewCandidates)) {}

void SilentInstall::run(Completion completion) {
    // Looking for Homebrew may wait for a disk; a child is launched on the main thread.
    dispatch_.global(platform::Priority::background, [&files = files_, &dispatch = dispatch_,
                                                      candidates = brewCandidates_, weak = self_.weak(),
                                                      completion = std::move(completion)]() mutable {
        const auto found =
            std::ranges::find_if(candidates, [&](const auto& path) { return files.exists(path); });
        auto brew = found != candidates.end() ? std::optional(*found) : std::nullopt;
        dispatch.main([weak, brew = std::move(brew), completion = std::move(completion)] {
            if (auto* installation = weak.get()) {
                installation->launch(brew, completion);
            }
        });
    });
}

void SilentInstall::launch(const std::optional<std::string>& brew, const Completion& completion) {
    if (!brew) {
        completion(false);
        return;
    }
    auto child = processes_.makeChild();
    const auto ended = [&dispatch = dispatch_, weak = self_.weak(), completion](int status) {
        dispatch.main([weak, completion, status] {
            if (auto* installation = weak.get()) {
                installation->setTask(nullptr);
                completion(status == 0);
            }
        });
    };
    const auto launched = child->launch({.executable = *brew,
                                         .arguments = {"install", "mihomo"},
                                         .environment = environment(),
                                         .discardsOutput = true},
                                        {.standardError = [](const std::string& /*unread*/) {}, .exit = ended});
    if (!launched) {
        completion(false);
        return;
    }
    setTask(std::move(child));
}

platform::Environment SilentInstall::environment() const {
    const auto variables = host_.variables();
    const auto home = variables.find("HOME");
    return {{"PATH", "/opt/homebrew/bin:/usr/local/bin:/usr/bin:/bin"},
            {"HOME", home != variables.end() && !home->second.empty() ? home->second : host_.accountHome()},
            {"HOMEBREW_NO_AUTO_UPDATE", "1"},
            {"HOMEBREW_NO_ANALYTICS", "1"}};
}

void SilentInstall::setTask(std::shared_ptr<platform::ChildProcess> task) {
    const std::lock_guard lock(mutex_);
    silentInstallTask_ = std::move(task);
}

void SilentInstall::terminate() {
    std::shared_ptr<platform::ChildProcess> task;
    {
        const std::lock_guard lock(mutex_);
        task = silentInstallTask_;
    }
    if (task) {
        task->terminate();
    }
}

} // namespace fernwick
