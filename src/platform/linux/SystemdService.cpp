#include "platform/linux/SystemdService.h"

#include "platform/ServiceDescription.h"
#include "platform/linux/PolkitRule.h"
#include "platform/linux/SystemdUnit.h"
#include "platform/posix/ShellWord.h"

#include <fmt/format.h>

#include <chrono>

namespace fernwick::platform {

namespace {

using namespace std::chrono_literals;

constexpr const char* kSystemctl = "/usr/bin/systemctl";

// A restart waits for the old engine, which systemd kills after the unit's 10 seconds. A systemd that is stuck
// must not hold a queue for ever.
constexpr auto kRestartLimit = 30s;
constexpr auto kTerminateLimit = 10s;

} // namespace

std::string systemdInstallLine(const std::string& temporaryFile, const std::string& user) {
    // Neither systemd nor polkit reads a file whose name ends in ".new".
    return fmt::format(
        "[ -d /run/systemd/system ] || {{ echo 'systemd does not run on this machine' >&2; exit 1; }}; "
        "umask 022 && mkdir -p /etc/polkit-1/rules.d && "
        "printf %s {rule} > {rulePlace}.new && mv -f {rulePlace}.new {rulePlace} && "
        "cp {unit} {unitPlace}.new && chmod 644 {unitPlace}.new && mv -f {unitPlace}.new {unitPlace} && "
        "systemctl daemon-reload",
        fmt::arg("rule", shellWord(polkitRule(user))), fmt::arg("rulePlace", kPolkitRule),
        fmt::arg("unit", shellWord(temporaryFile)), fmt::arg("unitPlace", kSystemdUnit));
}

ServiceCheck SystemdService::check(const std::string& expectedExecutable) {
    const auto text = readServiceDescription(files_, kSystemdUnit);
    if (!text) {
        return {text.error()};
    }
    const auto facts = readSystemdUnit(*text);
    const bool ours = !facts.installedFor || *facts.installedFor == user_;
    if (facts.executable == expectedExecutable && ours) {
        return {facts.asRoot ? ServiceState::ready : ServiceState::missingRoot};
    }
    auto oldPath = facts.executable.value_or("unknown");
    return {ServiceState::pathChanged, ours ? std::move(oldPath) : oldPath + " (" + *facts.installedFor + ")"};
}

std::expected<PreparedInstallation, FileError> SystemdService::prepare(const ServiceProgram& program,
                                                                       ServiceInstallation /*installation*/) {
    if (auto made = files_.makeFolder(host_.supportFolder()); !made) {
        return std::unexpected(std::move(made.error()));
    }
    auto file = host_.supportFolder() + "/fernwick-mihomo.service";
    if (auto written = files_.write(file, systemdUnit(program, user_), kOwnerOnlyFile); !written) {
        return std::unexpected(std::move(written.error()));
    }
    auto line = systemdInstallLine(file, user_);
    return PreparedInstallation{std::move(line), std::move(file)};
}

// What systemctl answers is dropped by both: the application asks the engine itself whether it runs.

void SystemdService::restart(const ServiceProgram& /*program*/) {
    static_cast<void>(commands_.run({.executable = kSystemctl,
                                     .arguments = {"--no-ask-password", "restart", kSystemdUnitName},
                                     .timeLimit = kRestartLimit}));
}

void SystemdService::terminate() {
    static_cast<void>(
        commands_.run({.executable = kSystemctl,
                       .arguments = {"--no-ask-password", "kill", "-s", "SIGTERM", kSystemdUnitName},
                       .timeLimit = kTerminateLimit}));
}

} // namespace fernwick::platform
