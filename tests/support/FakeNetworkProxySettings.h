// Proxy settings in memory, which keep what was asked of them in order and can fail on command.
// Threads: any.
#pragma once

#include "platform/NetworkProxySettings.h"

#include <map>
#include <mutex>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace fernwick::fakes {

class FakeNetworkProxySettings final : public platform::NetworkProxySettings {
public:
    // What is set on one service.
    struct State {
        std::string url{};
        bool autoProxy = false;
        bool socks = false;
        bool web = false;
        bool secureWeb = false;
    };

    explicit FakeNetworkProxySettings(std::vector<std::string> services = {"Wi-Fi"})
        : services_(std::move(services)) {}

    [[nodiscard]] std::vector<std::string> allNetworkServices() override {
        const std::lock_guard lock(mutex_);
        calls_.emplace_back("list");
        return failing_ ? std::vector<std::string>() : services_;
    }
    [[nodiscard]] std::string activeAutoProxyURL(const std::string& service) override {
        const std::lock_guard lock(mutex_);
        calls_.push_back("url " + service);
        const auto& state = states_[service];
        return state.autoProxy && !failing_ ? state.url : std::string();
    }
    void setAutoProxyURL(const std::string& service, std::string_view url) override {
        change("url " + service + " " + std::string(url), service,
               [url](State& state) { state.url = std::string(url); });
    }
    void setAutoProxyState(const std::string& service, bool on) override {
        change("auto " + service + (on ? " on" : " off"), service,
               [on](State& state) { state.autoProxy = on; });
    }
    void setSocksFirewallProxyOff(const std::string& service) override {
        change("socks " + service + " off", service, [](State& state) { state.socks = false; });
    }
    void setWebProxyOff(const std::string& service) override {
        change("web " + service + " off", service, [](State& state) { state.web = false; });
    }
    void setSecureWebProxyOff(const std::string& service) override {
        change("secureweb " + service + " off", service, [](State& state) { state.secureWeb = false; });
    }

    // From now on nothing can be listed or read, and changes are lost.
    void fail() {
        const std::lock_guard lock(mutex_);
        failing_ = true;
    }

    // As another program sets it.
    void setState(const std::string& service, State state) {
        const std::lock_guard lock(mutex_);
        states_[service] = std::move(state);
    }

    [[nodiscard]] State state(const std::string& service) const {
        const std::lock_guard lock(mutex_);
        const auto found = states_.find(service);
        return found == states_.end() ? State() : found->second;
    }

    // Every call so far, e.g. "list", "url Wi-Fi" (asked), "url Wi-Fi http://..." (set), "auto Wi-Fi on".
    [[nodiscard]] std::vector<std::string> calls() const {
        const std::lock_guard lock(mutex_);
        return calls_;
    }

private:
    template <class Change>
    void change(std::string call, const std::string& service, const Change& apply) {
        const std::lock_guard lock(mutex_);
        calls_.push_back(std::move(call));
        if (!failing_) {
            apply(states_[service]);
        }
    }

    mutable std::mutex mutex_;
    std::vector<std::string> services_;
    std::map<std::string, State> states_;
    std::vector<std::string> calls_;
    bool failing_ = false;
};

} // namespace fernwick::fakes
