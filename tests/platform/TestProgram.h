// Programs of other makers that a test runs.
#pragma once

#include "platform/linux/PidFd.h"
#include "platform/posix/ChildLauncher.h"
#include "support/WaitUntil.h"

#include <array>
#include <csignal>
#include <poll.h>
#include <stdexcept>
#include <string>
#include <unistd.h>
#include <utility>
#include <vector>

namespace fernwick::platform {

// A program that runs until the test ends it. Throws when it cannot be started: a missing tool is an error.
class TestProgram {
public:
    TestProgram(const std::string& executable, const std::vector<std::string>& arguments,
                const Environment* environment = nullptr) {
        auto launched = launcher_.launch(executable, arguments, environment);
        if (!launched) {
            throw std::runtime_error(executable + " cannot be started: " + launched.error().description);
        }
        child_ = std::move(*launched);
    }
    TestProgram(const TestProgram&) = delete;
    TestProgram& operator=(const TestProgram&) = delete;
    ~TestProgram() {
        if (child_.process) {
            signal(SIGKILL);
            static_cast<void>(reapProcess(child_.process));
        }
    }

    [[nodiscard]] int pid() const { return child_.pid; }

    void signal(int number) const { signalProcess(child_.process, number); }

    // What it has written to standard output so far.
    [[nodiscard]] const std::string& output() {
        std::array<char, 4096> buffer{};
        for (auto count = read(child_.standardOutput.get(), buffer.data(), buffer.size()); count > 0;
             count = read(child_.standardOutput.get(), buffer.data(), buffer.size())) {
            output_.append(buffer.data(), static_cast<std::size_t>(count));
        }
        return output_;
    }

    // Waits for its end: the exit status.
    [[nodiscard]] int wait() {
        if (!fakes::waitUntil([&] {
                static_cast<void>(output());
                return hasEnded(child_.process);
            })) {
            throw std::runtime_error("a program does not end");
        }
        static_cast<void>(output());
        const int status = reapProcess(child_.process);
        child_.process.reset();
        return status;
    }

private:
    ChildLauncher launcher_;
    LaunchedChild child_;
    std::string output_;
};

// Runs a program to its end, and gives what it wrote. Throws when it fails.
inline std::string outputOf(const std::string& executable, const std::vector<std::string>& arguments,
                            const Environment* environment = nullptr) {
    TestProgram program(executable, arguments, environment);
    if (const int status = program.wait(); status != 0) {
        throw std::runtime_error(executable + " ended with " + std::to_string(status) + ": " +
                                 program.output());
    }
    return program.output();
}

} // namespace fernwick::platform
