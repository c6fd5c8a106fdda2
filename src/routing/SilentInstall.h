// Gets the engine's program by Homebrew, without a window or a word.
// Threads: main thread, unless an operation says otherwise.
#pragma once

#include "platform/ChildProcess.h"
#include "platform/Dispatch.h"
#include "platform/FileSystem.h"
#include "platform/HostEnvironment.h"
#include "support/Weak.h"

#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace fernwick {

class SilentInstall {
public:
    // Whether the program was installed; called on the main queue.
    using Completion = std::function<void(bool)>;

    // `brewCandidates` are absolute paths, of which the first that exists is used.
    SilentInstall(platform::Dispatch& dispatch, platform::FileSystem& files, platform::Processes& processes,
                  const platform::HostEnvironment& host, std::vector<std::string> brewCandidates);
    SilentInstall(const SilentInstall&) = delete;
    SilentInstall& operator=(const SilentInstall&) = delete;

    // Runs "brew install mihomo". Without Homebrew, or when it cannot be run, the completion gets false.
    void run(Completion completion);

    // Asks a brew that runs to end. Any thread, while the installation lives.
    void terminate();

private:
    void launch(const std::optional<std::string>& brew, const Completion& completion);
    [[nodiscard]] platform::Environment environment() const;
    void setTask(std::shared_ptr<platform::ChildProcess> task);

    platform::Dispatch& dispatch_;
    platform::FileSystem& files_;
    platform::Processes& processes_;
    const platform::HostEnvironment& host_;
    std::vector<std::string> brewCandidates_;
    std::mutex mutex_; // guards the task
    std::shared_ptr<platform::ChildProcess> silentInstallTask_;
    support::WeakSource<SilentInstall> self_{*this};
};

} // namespace fernwick
