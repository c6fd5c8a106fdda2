// The engine's service and the administrator's prompt under a test's command.
// Threads: any, as the real ones; a test looks while nothing runs.
#pragma once

#include "platform/AdministratorShell.h"
#include "platform/ServiceControl.h"
#include "support/FakeFileSystem.h"

#include <deque>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace fernwick::fakes {

class FakeServiceControl final : public platform::ServiceControl {
public:
    static constexpr const char* kTemporaryFile = "/tmp/fernwick-service";

    // Prepared installations lie in these files.
    explicit FakeServiceControl(FakeFileSystem& files) : files_(files) {}

    [[nodiscard]] platform::ServiceCheck check(const std::string& expectedExecutable) override {
        note("check " + expectedExecutable);
        return state;
    }
    [[nodiscard]] std::expected<platform::PreparedInstallation, platform::FileError>
    prepare(const platform::ServiceProgram& program, platform::ServiceInstallation installation) override {
        const std::string name =
            installation == platform::ServiceInstallation::first ? "install " : "reinstall ";
        note(name + wordsOf(program));
        if (auto written = files_.write(kTemporaryFile, program.executable, platform::kOwnerOnlyFile);
            !written) {
            return std::unexpected(written.error());
        }
        return platform::PreparedInstallation{name + program.executable, kTemporaryFile};
    }
    void restart(const platform::ServiceProgram& program) override {
        note("restart " + wordsOf(program));
        if (whileRestarting) {
            whileRestarting();
        }
    }
    void terminate() override { note("terminate"); }

    // What was asked for, in order.
    [[nodiscard]] std::vector<std::string> calls() const {
        const std::lock_guard lock(mutex_);
        return calls_;
    }

    platform::ServiceCheck state{platform::ServiceState::ready};
    std::function<void()> whileRestarting;

private:
    static std::string wordsOf(const platform::ServiceProgram& program) {
        return program.executable + " -d " + program.folder + " -f " + program.configuration;
    }
    void note(std::string call) {
        const std::lock_guard lock(mutex_);
        calls_.push_back(std::move(call));
    }

    FakeFileSystem& files_;
    mutable std::mutex mutex_;
    std::vector<std::string> calls_;
};

class FakeAdministratorShell final : public platform::AdministratorShell {
public:
    using Outcome = std::expected<void, platform::AdministratorError>;

    [[nodiscard]] Outcome run(const std::string& line) override {
        const std::lock_guard lock(mutex_);
        lines_.push_back(line);
        if (whilePrompting) {
            whilePrompting();
        }
        if (outcomes_.empty()) {
            return {};
        }
        auto outcome = std::move(outcomes_.front());
        outcomes_.pop_front();
        return outcome;
    }

    // Lets the next runs fail, one for each call; without any, a run succeeds.
    void failNext(std::string message) {
        outcomes_.emplace_back(std::unexpected(platform::AdministratorError{std::move(message)}));
    }

    // The lines that were run.
    [[nodiscard]] const std::vector<std::string>& lines() const { return lines_; }

    std::function<void()> whilePrompting; // called in the middle of a run

private:
    std::mutex mutex_;
    std::deque<Outcome> outcomes_;
    std::vector<std::string> lines_;
};

} // namespace fernwick::fakes
