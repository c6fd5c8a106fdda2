#include "routing/SystemProxyManager.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <array>
#include <utility>

namespace fernwick {

namespace {

constexpr auto kDirectText = "function FindProxyForURL(url, host) { return \"DIRECT\"; }";

// Whether a service is of the kinds that carry most people's traffic. The names looked for are ASCII, and no
// other letter is one of theirs in lower case.
bool isUsualService(std::string_view name) {
    constexpr std::array<std::string_view, 4> kUsual{"wi-fi", "wifi", "ethernet", "thunderbolt"};
    std::string lower(name);
    std::ranges::transform(lower, lower.begin(), [](char letter) {
        return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter + 32) : letter;
    });
    return std::ranges::any_of(kUsual, [&](std::string_view usual) { return lower.contains(usual); });
}

} // namespace

SystemProxyManager::SystemProxyManager(platform::NetworkProxySettings& settings, const platform::Clock& clock,
                                       UpdatePAC updatePAC, support::PrintLine print)
    : settings_(settings), clock_(clock), updatePAC_(std::move(updatePAC)), print_(std::move(print)) {}

std::vector<std::string> SystemProxyManager::allNetworkServices() const {
    return settings_.allNetworkServices();
}

std::vector<std::string> SystemProxyManager::activeNetworkServices() const {
    auto all = allNetworkServices();
    std::vector<std::string> usual;
    std::ranges::copy_if(all, std::back_inserter(usual), isUsualService);
    return usual.empty() ? all : usual;
}

void SystemProxyManager::setPACURL(std::string_view url) const {
    const auto services = activeNetworkServices();
    for (const auto& service : services) {
        settings_.setAutoProxyURL(service, url);
        settings_.setAutoProxyState(service, true);
        settings_.setSocksFirewallProxyOff(service);
    }
    print_(fmt::format("[SystemProxyManager] ✅ PAC URL set: {} on [{}]", url, fmt::join(services, ", ")));
}

void SystemProxyManager::removeAllProxy(std::string_view reason, bool wait) const {
    const auto services = allNetworkServices();
    for (const auto& service : services) {
        settings_.setAutoProxyState(service, false);
        settings_.setSocksFirewallProxyOff(service);
        settings_.setWebProxyOff(service);
        settings_.setSecureWebProxyOff(service);
    }
    updatePAC_(kDirectText);
    if (wait) {
        clock_.sleep(kLandingTime);
    }
    const auto why = reason.empty() ? std::string() : fmt::format(" ({})", reason);
    print_(fmt::format("[SystemProxyManager] 🔴 All proxy removed on {} interface(s){}", services.size(), why));
}

void SystemProxyManager::apply(std::string text, const TunnelPortMap& tunnelPorts,
                               std::string_view pacURL) const {
    updatePAC_(std::move(text));
    if (!tunnelPorts.empty()) {
        setPACURL(pacURL);
        return;
    }
    for (const auto& service : activeNetworkServices()) {
        settings_.setAutoProxyState(service, false);
    }
}

void SystemProxyManager::clearStale(std::string_view pacURL) const {
    for (const auto& service : allNetworkServices()) {
        const auto url = settings_.activeAutoProxyURL(service);
        if (!url.empty() && url == pacURL) {
            settings_.setAutoProxyState(service, false);
        }
    }
}

} // namespace fernwick
