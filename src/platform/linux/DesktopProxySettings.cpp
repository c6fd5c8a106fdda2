#include "platform/linux/DesktopProxySettings.h"

namespace fernwick::platform {

DesktopProxySettings::DesktopProxySettings(CommandRunner& runner, const HostEnvironment& host,
                                           FileSystem& files)
    : gnome_(runner, host), kde_(runner, host, files), services_{{{"GNOME", &gnome_}, {"KDE", &kde_}}} {}

std::vector<std::string> DesktopProxySettings::allNetworkServices() {
    std::vector<std::string> names;
    for (const auto& service : services_) {
        if (service.proxy->isInstalled()) {
            names.emplace_back(service.name);
        }
    }
    return names;
}

std::string DesktopProxySettings::activeAutoProxyURL(const std::string& service) {
    auto* proxy = find(service);
    return proxy != nullptr ? proxy->activeAutoProxyURL() : std::string();
}

void DesktopProxySettings::setAutoProxyURL(const std::string& service, std::string_view url) {
    if (auto* proxy = find(service)) {
        proxy->setAutoProxyURL(url);
    }
}

void DesktopProxySettings::setAutoProxyState(const std::string& service, bool on) {
    if (auto* proxy = find(service)) {
        proxy->setAutoProxyState(on);
    }
}

void DesktopProxySettings::setSocksFirewallProxyOff(const std::string& service) {
    setManualProxiesOff(service);
}

void DesktopProxySettings::setWebProxyOff(const std::string& service) {
    setManualProxiesOff(service);
}

void DesktopProxySettings::setSecureWebProxyOff(const std::string& service) {
    setManualProxiesOff(service);
}

DesktopProxy* DesktopProxySettings::find(std::string_view service) const {
    for (const auto& each : services_) {
        if (each.name == service) {
            return each.proxy;
        }
    }
    return nullptr;
}

void DesktopProxySettings::setManualProxiesOff(const std::string& service) const {
    if (auto* proxy = find(service)) {
        proxy->setManualProxiesOff();
    }
}

} // namespace fernwick::platform
