// The system's proxy settings, per network service (networksetup(8) on macOS; on Linux each desktop that keeps
// such settings counts as one service).
// Threads: any. Every operation blocks on outside commands, so it is spared the main thread.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace fernwick::platform {

class NetworkProxySettings {
public:
    virtual ~NetworkProxySettings() = default;

    // The names of the services that are enabled, in the system's order; empty when they cannot be listed.
    [[nodiscard]] virtual std::vector<std::string> allNetworkServices() = 0;

    // The address of the proxy auto-config text that is in force for the service; empty when there is none or
    // it is switched off.
    [[nodiscard]] virtual std::string activeAutoProxyURL(const std::string& service) = 0;

    // Each of these changes one setting of one service. A failure has no consequence for anyone, and is
    // dropped; so is a change to a service that is not there. The address stays kept while it is switched off,
    // and may be in force as soon as it is set: networksetup(8) does that.
    virtual void setAutoProxyURL(const std::string& service, std::string_view url) = 0;
    virtual void setAutoProxyState(const std::string& service, bool on) = 0;

    // The proxies that a user enters by hand, by protocol; a system may have one switch for the three. Where
    // an auto-proxy is in force they leave it so.
    virtual void setSocksFirewallProxyOff(const std::string& service) = 0;
    virtual void setWebProxyOff(const std::string& service) = 0;
    virtual void setSecureWebProxyOff(const std::string& service) = 0;
};

} // namespace fernwick::platform
