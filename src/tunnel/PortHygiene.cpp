#include "tunnel/PortHygiene.h"

#include "support/Text.h"

#include <charconv>
#include <cstdint>
#include <optional>
#include <utility>

namespace fernwick {

namespace {

using Services = PortHygiene::Services;

std::optional<std::int32_t> parseNumber(std::string_view text) {
    if (text.starts_with('+') && !text.starts_with("+-")) {
        text.remove_prefix(1);
    }
    std::int32_t number = 0;
    const auto parsed = std::from_chars(text.data(), text.data() + text.size(), number);
    const bool whole = parsed.ec == std::errc() && parsed.ptr == text.data() + text.size();
    return whole ? std::optional(number) : std::nullopt;
}

std::vector<int> scan(const Services& services, std::string_view port) {
    const auto result =
        services.runner.run({.executable = "/bin/sh",
                             .arguments = {"-c", "lsof -ti tcp:" + std::string(port) + " 2>/dev/null"},
                             .timeLimit = PortHygiene::kScanLimit});
    // By design a scan that fails is one that found nothing: the launch goes on, and ssh tells of a taken port.
    return result ? parseProcessIds(result->standardOutput) : std::vector<int>();
}

std::vector<int> scanAndKill(const Services& services, std::string_view port) {
    auto found = scan(services, port);
    if (found.empty()) {
        return found;
    }
    for (const int pid : found) {
        services.processes.sendSignal(pid, platform::kSignalTerminate);
    }
    services.clock.sleep(PortHygiene::kKillDelay);
    for (const int pid : found) {
        services.processes.sendSignal(pid, platform::kSignalKill);
    }
    return found;
}

} // namespace

std::vector<int> parseProcessIds(std::string_view output) {
    std::vector<int> found;
    if (!support::isValidUtf8(output)) {
        return found;
    }
    while (!output.empty()) {
        const auto end = output.find_first_of("\n\r");
        const auto number = parseNumber(support::trimBlanks(output.substr(0, end)));
        if (number && *number > 0) {
            found.push_back(*number);
        }
        output.remove_prefix(end == std::string_view::npos ? output.size() : end + 1);
    }
    return found;
}

PortHygiene::PortHygiene(Services services, TunnelLogs& logs)
    : services_(services), logs_(logs), self_(*this) {}

std::vector<int> PortHygiene::listenersOnPort(std::string_view port) const {
    return scan(services_, port);
}

std::vector<int> PortHygiene::killListenersOnPort(std::string_view port) const {
    return scanAndKill(services_, port);
}

void PortHygiene::clearPortsBeforeLaunch(std::string port, const support::Uuid& id, platform::Work launch) {
    const auto log = [&dispatch = services_.dispatch, weak = self_.weak(), id](LogLevel level,
                                                                               std::string text) {
        dispatch.main([weak, id, level, text = std::move(text)]() mutable {
            if (auto* hygiene = weak.get()) {
                hygiene->logs_.append(level, std::move(text), id);
            }
        });
    };
    services_.dispatch.global(platform::Priority::userInitiated,
                              [services = services_, weak = self_.weak(), log, port = std::move(port),
                               launch = std::move(launch)]() mutable {
                                  if (weak.expired()) {
                                      return;
                                  }
                                  if (!scan(services, port).empty()) {
                                      log(LogLevel::warning, "⚠ Port :" + port + " bị chiếm — đang kill...");
                                      scanAndKill(services, port);
                                      log(LogLevel::info, "✓ Port :" + port + " đã được giải phóng");
                                  }
                                  services.dispatch.main([weak, launch = std::move(launch)]() mutable {
                                      if (!weak.expired()) {
                                          launch();
                                      }
                                  });
                              });
}

void PortHygiene::cleanOrphanedPort(std::string port, const support::Uuid& id) {
    services_.dispatch.globalAfter(platform::Priority::normal, kOrphanDelay,
                                   [services = services_, weak = self_.weak(), port = std::move(port), id] {
                                       if (weak.expired() || scan(services, port).empty()) {
                                           return;
                                       }
                                       scanAndKill(services, port);
                                       services.dispatch.main([weak, port, id] {
                                           if (auto* hygiene = weak.get()) {
                                               hygiene->logs_.append(
                                                   LogLevel::info, "■ Killed orphaned PID(s) on :" + port, id);
                                           }
                                       });
                                   });
}

} // namespace fernwick
