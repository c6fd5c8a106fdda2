#include "platform/macos/NetworkSetup.h"

#include "support/Text.h"

#include <algorithm>
#include <utility>

namespace fernwick::platform {

namespace {

// The lines of a text, without the spaces and tabs at both ends.
std::vector<std::string_view> trimmedLines(std::string_view text) {
    std::vector<std::string_view> lines;
    while (!text.empty()) {
        const auto end = text.find('\n');
        auto line = text.substr(0, end);
        line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
        line.remove_suffix(line.size() - (line.find_last_not_of(" \t") + 1));
        lines.push_back(line);
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    }
    return lines;
}

// What stands behind a label at the beginning of a line; empty when no line begins so.
std::string_view valueOf(std::string_view label, const std::vector<std::string_view>& lines) {
    for (const auto line : lines) {
        if (line.starts_with(label)) {
            return line.substr(label.size());
        }
    }
    return {};
}

} // namespace

std::vector<std::string> parseNetworkServices(std::string_view output) {
    std::vector<std::string> services;
    if (!support::isValidUtf8(output)) {
        return services;
    }
    for (const auto line : trimmedLines(output)) {
        if (!line.empty() && !line.starts_with('*') && !line.starts_with("An asterisk")) {
            services.emplace_back(line);
        }
    }
    return services;
}

std::string parseAutoProxyURL(std::string_view output) {
    const auto lines = trimmedLines(output);
    const auto url = valueOf("URL: ", lines);
    const bool none = valueOf("Enabled: ", lines) != "Yes" || url == "(null)";
    return none ? std::string() : std::string(url);
}

std::vector<std::string> NetworkSetup::allNetworkServices() {
    return parseNetworkServices(run({"-listallnetworkservices"}));
}

std::string NetworkSetup::activeAutoProxyURL(const std::string& service) {
    return parseAutoProxyURL(run({"-getautoproxyurl", service}));
}

void NetworkSetup::setAutoProxyURL(const std::string& service, std::string_view url) {
    run({"-setautoproxyurl", service, std::string(url)});
}

void NetworkSetup::setAutoProxyState(const std::string& service, bool on) {
    run({"-setautoproxystate", service, on ? "on" : "off"});
}

void NetworkSetup::setSocksFirewallProxyOff(const std::string& service) {
    run({"-setsocksfirewallproxystate", service, "off"});
}

void NetworkSetup::setWebProxyOff(const std::string& service) {
    run({"-setwebproxystate", service, "off"});
}

void NetworkSetup::setSecureWebProxyOff(const std::string& service) {
    run({"-setsecurewebproxystate", service, "off"});
}

std::string NetworkSetup::run(std::vector<std::string> arguments) {
    auto result = runner_.run({.executable = kProgram, .arguments = std::move(arguments)});
    // A command that cannot be started is one that prints nothing: the next setting is tried all the same.
    return result ? std::move(result->standardOutput) : std::string();
}

} // namespace fernwick::platform
