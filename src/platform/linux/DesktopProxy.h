// The proxy settings of one kind of desktop, which has one for all of its networks.
// Threads: any. Every operation blocks on outside commands, each for kDesktopCommandLimit at the most.
#pragma once

#include "platform/CommandRunner.h"
#include "platform/HostEnvironment.h"

#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace fernwick::platform {

// How long a command may take. They end in a few milliseconds; one whose session bus is stuck never would.
inline constexpr std::chrono::seconds kDesktopCommandLimit{2};

class DesktopProxy {
public:
    virtual ~DesktopProxy() = default;

    // Whether this desktop's settings are on the machine and the user may change them.
    [[nodiscard]] virtual bool isInstalled() = 0;

    // The address of the proxy auto-config text in force; empty when there is none.
    [[nodiscard]] virtual std::string activeAutoProxyURL() = 0;

    // Keeps the address. Whether it is in force stays as it was.
    virtual void setAutoProxyURL(std::string_view url) = 0;

    // Puts the address that is kept in force, or stops it. To stop it leaves every other choice alone.
    virtual void setAutoProxyState(bool on) = 0;

    // Stops the proxies that the user entered by hand; what was entered is kept. A desktop has one switch for
    // all of them, whatever their protocol.
    virtual void setManualProxiesOff() = 0;
};

// Runs the commands of a desktop in the application's environment, but for the session bus: where there is
// none, the libraries of D-Bus would start one, so they are told of one that cannot be.
class DesktopCommands {
public:
    // The runner outlives the commands.
    DesktopCommands(CommandRunner& runner, const HostEnvironment& host);

    // What the command prints, without the line feed at its end. Nothing when it cannot be started, fails or
    // takes too long.
    [[nodiscard]] std::optional<std::string> output(std::string executable,
                                                    std::vector<std::string> arguments) const;

    // Runs the command for what it does. A failure is dropped: there is nobody who could do anything about it.
    void run(std::string executable, std::vector<std::string> arguments) const;

private:
    CommandRunner& runner_;
    Environment environment_;
};

} // namespace fernwick::platform
