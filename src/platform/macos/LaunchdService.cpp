#include "platform/macos/LaunchdService.h"

#include "platform/ServiceDescription.h"
#include "platform/posix/ShellWord.h"
#include "support/Pieces.h"
#include "support/Text.h"

#include <chrono>
#include <string_view>

namespace fernwick::platform {

namespace {

using namespace std::chrono_literals;

constexpr const char* kLaunchctl = "/bin/launchctl";
constexpr std::string_view kStringBegin = "<string>";
constexpr std::string_view kStringEnd = "</string>";

// A restart waits for the old engine, which launchd kills after 20 seconds (ExitTimeOut in launchd.plist(5)).
constexpr auto kRestartLimit = 30s;
constexpr auto kTerminateLimit = 10s;

std::string target() {
    return std::string("system/") + kServiceLabel;
}

// The first path among the strings of the description.
std::string firstPath(std::string_view plist) {
    std::string path = "unknown";
    support::forEachPiece(plist, '\n', [&](std::string_view piece) {
        auto line = support::trimBlanks(piece);
        if (!line.starts_with("<string>/") || !line.ends_with(kStringEnd)) {
            return true;
        }
        line.remove_prefix(kStringBegin.size());
        line.remove_suffix(kStringEnd.size());
        path = line;
        return false;
    });
    return path;
}

} // namespace

std::string launchdPlist(const ServiceProgram& program) {
    const std::string label = kServiceLabel;
    const std::string log = kServiceLog;
    return R"(<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" "http://www.apple.com/DTDs/PropertyList-1.0.dtd">
<plist version="1.0">
<dict>
    <key>Label</key>
    <string>)" +
           label + R"(</string>
    <key>UserName</key>
    <string>root</string>
    <key>ProgramArguments</key>
    <array>
        <string>)" +
           program.executable + R"(</string>
        <string>-d</string>
        <string>)" +
           program.folder + R"(</string>
        <string>-f</string>
        <string>)" +
           program.configuration + R"(</string>
    </array>
    <key>RunAtLoad</key>
    <false/>
    <key>KeepAlive</key>
    <false/>
    <key>StandardOutPath</key>
    <string>)" +
           log + R"(</string>
    <key>StandardErrorPath</key>
    <string>)" +
           log + R"(</string>
</dict>
</plist>)";
}

std::string launchdInstallLine(const std::string& temporaryFile, ServiceInstallation installation) {
    const auto source = shellWord(temporaryFile);
    const auto place = shellWord(kLaunchdPlist);
    const auto install = "cp " + source + " " + place + " && chown root:wheel " + place + " && chmod 644 " +
                         place + " && launchctl bootstrap system " + place;
    if (installation == ServiceInstallation::first) {
        return install;
    }
    return "launchctl bootout " + target() + " 2>/dev/null; rm -f " + place + " && " + install;
}

ServiceCheck LaunchdService::check(const std::string& expectedExecutable) {
    const auto plist = readServiceDescription(files_, kLaunchdPlist);
    if (!plist) {
        return {plist.error()};
    }
    if (plist->contains(expectedExecutable)) {
        return {plist->contains("<string>root</string>") ? ServiceState::ready : ServiceState::missingRoot};
    }
    return {ServiceState::pathChanged, firstPath(*plist)};
}

std::expected<PreparedInstallation, FileError> LaunchdService::prepare(const ServiceProgram& program,
                                                                       ServiceInstallation installation) {
    auto file = host_.temporaryFolder() + "/fernwick-mihomo.plist";
    if (auto written = files_.write(file, launchdPlist(program), kOwnerOnlyFile); !written) {
        return std::unexpected(std::move(written.error()));
    }
    auto line = launchdInstallLine(file, installation);
    return PreparedInstallation{std::move(line), std::move(file)};
}

// What launchctl answers is dropped by both: the application asks the engine itself whether it runs.

void LaunchdService::restart(const ServiceProgram& /*program*/) {
    static_cast<void>(commands_.run(
        {.executable = kLaunchctl, .arguments = {"kickstart", "-k", target()}, .timeLimit = kRestartLimit}));
}

void LaunchdService::terminate() {
    static_cast<void>(commands_.run(
        {.executable = kLaunchctl, .arguments = {"kill", "SIGTERM", target()}, .timeLimit = kTerminateLimit}));
}

} // namespace fernwick::platform
