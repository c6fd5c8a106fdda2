#include "platform/linux/DesktopProxy.h"

#include "platform/posix/SessionBusAddress.h"

#include <utility>

namespace fernwick::platform {

DesktopCommands::DesktopCommands(CommandRunner& runner, const HostEnvironment& host)
    : runner_(runner), environment_(host.variables()) {
    auto bus = sessionBusAddress(environment_);
    environment_["DBUS_SESSION_BUS_ADDRESS"] = bus.empty() ? "disabled:" : std::move(bus);
}

std::optional<std::string> DesktopCommands::output(std::string executable,
                                                   std::vector<std::string> arguments) const {
    auto result = runner_.run({.executable = std::move(executable),
                               .arguments = std::move(arguments),
                               .environment = environment_,
                               .timeLimit = kDesktopCommandLimit});
    if (!result || result->status != 0) {
        return std::nullopt;
    }
    auto text = std::move(result->standardOutput);
    if (text.ends_with('\n')) {
        text.pop_back();
    }
    return text;
}

void DesktopCommands::run(std::string executable, std::vector<std::string> arguments) const {
    static_cast<void>(output(std::move(executable), std::move(arguments)));
}

} // namespace fernwick::platform
