#include "platform/linux/KdeProxy.h"

namespace fernwick::platform {

namespace {

constexpr auto kReader = "/usr/bin/kreadconfig";
constexpr auto kWriter = "/usr/bin/kwriteconfig";
constexpr auto kSignalSender = "/usr/bin/dbus-send";

constexpr auto kAddress = "Proxy Config Script";
constexpr auto kType = "ProxyType";

// The values of ProxyType (KProtocolManager::ProxyType of KIO).
constexpr auto kNoProxy = "0";
constexpr auto kManualProxy = "1";
constexpr auto kScriptProxy = "2";

// The arguments that lead to a key of the group.
std::vector<std::string> pathTo(const char* key) {
    return {"--file", "kioslaverc", "--group", "Proxy Settings", "--key", key};
}

} // namespace

std::string KdeProxy::activeAutoProxyURL() {
    return get(kType) == kScriptProxy ? get(kAddress) : std::string();
}

void KdeProxy::setAutoProxyURL(std::string_view url) {
    set(kAddress, url);
}

void KdeProxy::setAutoProxyState(bool on) {
    if (on) {
        set(kType, kScriptProxy);
    } else {
        leaveType(kScriptProxy);
    }
}

void KdeProxy::setManualProxiesOff() {
    leaveType(kManualProxy);
}

std::string KdeProxy::generation() const {
    for (const char* each : {"6", "5"}) {
        if (files_.exists(std::string(kWriter) + each)) {
            return each;
        }
    }
    return {};
}

std::string KdeProxy::get(const char* key) const {
    const auto suffix = generation();
    return suffix.empty() ? std::string() : commands_.output(kReader + suffix, pathTo(key)).value_or("");
}

void KdeProxy::set(const char* key, std::string_view value) const {
    const auto suffix = generation();
    if (suffix.empty()) {
        return;
    }
    auto arguments = pathTo(key);
    arguments.emplace_back("--"); // a value that begins with a dash is none of the options
    arguments.emplace_back(value);
    commands_.run(kWriter + suffix, std::move(arguments));
    commands_.run(kSignalSender, {"--session", "--type=signal", "/KIO/Scheduler",
                                  "org.kde.KIO.Scheduler.reparseSlaveConfiguration", "string:"});
}

void KdeProxy::leaveType(const char* type) const {
    if (get(kType) == type) {
        set(kType, kNoProxy);
    }
}

} // namespace fernwick::platform
