// The proxy settings of the desktops on this machine, each of which counts as one network service: "GNOME" and
// "KDE". Which desktop runs does not matter, since programs read the settings of the one they were made for.
// Threads: any. Every operation blocks on outside commands, for seconds when a session bus is stuck.
#pragma once

#include "platform/NetworkProxySettings.h"
#include "platform/linux/GnomeProxy.h"
#include "platform/linux/KdeProxy.h"

#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace fernwick::platform {

class DesktopProxySettings final : public NetworkProxySettings {
public:
    // The runner and the files outlive the settings; the host is read here.
    DesktopProxySettings(CommandRunner& runner, const HostEnvironment& host, FileSystem& files);
    DesktopProxySettings(const DesktopProxySettings&) = delete;
    DesktopProxySettings& operator=(const DesktopProxySettings&) = delete;

    // The desktops whose settings are installed.
    [[nodiscard]] std::vector<std::string> allNetworkServices() override;

    // A service that is none of ours has no address, and a change to it does nothing. A desktop has one switch
    // for the proxies entered by hand: whichever kind is switched off, all are, and what was entered is kept.
    [[nodiscard]] std::string activeAutoProxyURL(const std::string& service) override;
    void setAutoProxyURL(const std::string& service, std::string_view url) override;
    void setAutoProxyState(const std::string& service, bool on) override;
    void setSocksFirewallProxyOff(const std::string& service) override;
    void setWebProxyOff(const std::string& service) override;
    void setSecureWebProxyOff(const std::string& service) override;

private:
    struct Service {
        const char* name;
        DesktopProxy* proxy;
    };

    // The settings of the service; null when there is none of that name.
    [[nodiscard]] DesktopProxy* find(std::string_view service) const;
    void setManualProxiesOff(const std::string& service) const;

    GnomeProxy gnome_;
    KdeProxy kde_;
    std::array<Service, 2> services_;
};

} // namespace fernwick::platform
