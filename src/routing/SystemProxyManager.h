// Points the system at the application's proxy auto-config text, and takes the settings away again.
// Threads: any but the main one, since every operation blocks on outside commands. There is no state: it lies
// in the system's settings and with whoever serves the text. Two operations may overlap; the last one to finish
// decides what the system is left with.
#pragma once

#include "platform/Clock.h"
#include "platform/NetworkProxySettings.h"
#include "support/StandardOutput.h"
#include "tunnel/RoutingLayer.h"

#include <chrono>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace fernwick {

class SystemProxyManager {
public:
    // Publishes a text: what is fetched from the server from now on.
    using UpdatePAC = std::function<void(std::string text)>;

    // How long removeAllProxy waits, if asked to, so that the settings land before the process exits.
    static constexpr std::chrono::milliseconds kLandingTime{800};

    // The settings and the clock outlive the manager. The functions are called on the caller's thread.
    SystemProxyManager(platform::NetworkProxySettings& settings, const platform::Clock& clock,
                       UpdatePAC updatePAC, support::PrintLine print = support::printLine);

    // Every service that is enabled.
    [[nodiscard]] std::vector<std::string> allNetworkServices() const;

    // The services that are switched: those that sound like Wi-Fi, Ethernet or Thunderbolt by their name, or
    // all when none does.
    [[nodiscard]] std::vector<std::string> activeNetworkServices() const;

    // Puts the address in force on the active services, their SOCKS proxy off, and prints a line.
    void setPACURL(std::string_view url) const;

    // Switches every kind of proxy off on all services, the user's own included, publishes a text that sends
    // everything on its way directly, waits for kLandingTime if `wait` is set, and prints a line. The line
    // tells the reason unless that is empty.
    void removeAllProxy(std::string_view reason, bool wait) const;

    // Publishes the text that was built for these live ports. If there are any, puts `pacURL` in force;
    // otherwise switches the auto-proxy off on the active services.
    void apply(std::string text, const TunnelPortMap& tunnelPorts, std::string_view pacURL) const;

    // For a start, before any tunnel is up: switches the auto-proxy off on each service on which `pacURL` is
    // still in force, left there by a run that was killed. Prints nothing.
    void clearStale(std::string_view pacURL) const;

private:
    platform::NetworkProxySettings& settings_;
    const platform::Clock& clock_;
    UpdatePAC updatePAC_;
    support::PrintLine print_;
};

} // namespace fernwick
