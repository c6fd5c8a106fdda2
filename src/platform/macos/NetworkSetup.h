// The proxy settings of macOS, by its own command: networksetup(8).
// Threads: any. Each change is one run of the command, to its end.
#pragma once

#include "platform/CommandRunner.h"
#include "platform/NetworkProxySettings.h"

#include <string>
#include <string_view>
#include <vector>

namespace fernwick::platform {

// The enabled services in what "-listallnetworkservices" prints: a notice, then one name a line, those of
// disabled services behind an asterisk. Nothing when the output is not UTF-8.
[[nodiscard]] std::vector<std::string> parseNetworkServices(std::string_view output);

// The address in what "-getautoproxyurl" prints, "URL: ADDRESS" and "Enabled: Yes" on lines of their own; empty
// when there is none, it is not enabled, or the output has another form.
[[nodiscard]] std::string parseAutoProxyURL(std::string_view output);

class NetworkSetup final : public NetworkProxySettings {
public:
    static constexpr const char* kProgram = "/usr/sbin/networksetup";

    // The runner outlives the settings.
    explicit NetworkSetup(CommandRunner& runner) : runner_(runner) {}

    [[nodiscard]] std::vector<std::string> allNetworkServices() override;
    [[nodiscard]] std::string activeAutoProxyURL(const std::string& service) override;
    void setAutoProxyURL(const std::string& service, std::string_view url) override;
    void setAutoProxyState(const std::string& service, bool on) override;
    void setSocksFirewallProxyOff(const std::string& service) override;
    void setWebProxyOff(const std::string& service) override;
    void setSecureWebProxyOff(const std::string& service) override;

private:
    // What the command prints, whatever its exit status; empty when it cannot be started.
    std::string run(std::vector<std::string> arguments);

    CommandRunner& runner_;
};

} // namespace fernwick::platform
