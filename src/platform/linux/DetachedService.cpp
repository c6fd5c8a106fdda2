#include "platform/linux/DetachedService.h"

#include "platform/linux/PidFd.h"
#include "platform/linux/ProcessStart.h"
#include "platform/posix/DetachedLauncher.h"

#include <fmt/format.h>

#include <charconv>
#include <chrono>
#include <csignal>
#include <optional>

namespace fernwick::platform {

namespace {

using namespace std::chrono_literals;

constexpr auto kKillingLimit = 5s; // a process that the kernel holds may not go at all

struct PidRecord {
    int pid = 0;
    std::uint64_t start = 0;
};

std::optional<PidRecord> parsePidFile(const std::string& text) {
    PidRecord record;
    const char* const end = text.data() + text.size();
    const auto pid = std::from_chars(text.data(), end, record.pid);
    if (pid.ec != std::errc() || pid.ptr == end || *pid.ptr != ' ' || record.pid <= 1) {
        return std::nullopt;
    }
    const auto start = std::from_chars(pid.ptr + 1, end, record.start);
    return start.ec == std::errc() && start.ptr != end && *start.ptr == '\n' ? std::optional(record)
                                                                             : std::nullopt;
}

void end(const FileDescriptor& process, std::chrono::milliseconds patience) {
    signalProcess(process, SIGTERM);
    if (!awaitEnd(process, patience)) {
        signalProcess(process, SIGKILL);
        static_cast<void>(awaitEnd(process, kKillingLimit));
    }
}

} // namespace

ServiceCheck DetachedService::check(const std::string& /*expectedExecutable*/) {
    return {ServiceState::ready};
}

std::expected<PreparedInstallation, FileError> DetachedService::prepare(const ServiceProgram& /*program*/,
                                                                        ServiceInstallation /*installation*/) {
    return PreparedInstallation{":", ""};
}

void DetachedService::restart(const ServiceProgram& program) {
    if (const auto process = running()) {
        end(process, settings_.patience);
    }
    const auto pid = launchDetached({.executable = program.executable,
                                     .arguments = {"-d", program.folder, "-f", program.configuration},
                                     .outputFile = settings_.log});
    const auto start = pid ? processStart(*pid) : std::nullopt;
    if (!start) {
        return; // it could not be executed or has ended already; whoever waits for the engine will see
    }
    if (!files_.write(settings_.pidFile, fmt::format("{} {}\n", *pid, *start), kOwnerOnlyFile)) {
        if (const auto process = openProcess(*pid); process && processStart(*pid) == start) {
            end(process, settings_.patience);
        }
    }
}

void DetachedService::terminate() {
    if (const auto process = running()) {
        signalProcess(process, SIGTERM);
    }
}

// The process that the pid file tells of; nothing open when it has ended.
FileDescriptor DetachedService::running() {
    const auto text = files_.read(settings_.pidFile);
    const auto record = text ? parsePidFile(*text) : std::nullopt;
    if (!record) {
        return {};
    }
    // Opened first: the descriptor stays with this process, whoever gets its id after the comparison.
    auto process = openProcess(record->pid);
    return process && processStart(record->pid) == record->start ? std::move(process) : FileDescriptor();
}

} // namespace fernwick::platform
