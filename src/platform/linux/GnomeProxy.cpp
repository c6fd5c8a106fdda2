#include "platform/linux/GnomeProxy.h"

namespace fernwick::platform {

namespace {

constexpr auto kProgram = "/usr/bin/gsettings";
constexpr auto kSchema = "org.gnome.system.proxy";
constexpr auto kMode = "mode";
constexpr auto kAddress = "autoconfig-url";

} // namespace

std::string quotedVariant(std::string_view text) {
    std::string quoted = "'";
    for (const char character : text) {
        if (character == '\'' || character == '\\') {
            quoted += '\\';
        }
        quoted += character;
    }
    return quoted += '\'';
}

std::optional<std::string> unquotedVariant(std::string_view printed) {
    const bool whole = printed.size() >= 2 && (printed.front() == '\'' || printed.front() == '"') &&
                       printed.back() == printed.front();
    if (!whole) {
        return std::nullopt;
    }
    const char quote = printed.front();
    const auto inner = printed.substr(1, printed.size() - 2);
    std::string text;
    for (std::size_t at = 0; at < inner.size(); ++at) {
        if (inner[at] == quote) {
            return std::nullopt;
        }
        if (inner[at] == '\\') {
            ++at;
            if (at == inner.size() || (inner[at] != '\\' && inner[at] != '\'' && inner[at] != '"')) {
                return std::nullopt;
            }
        }
        text += inner[at];
    }
    return text;
}

bool GnomeProxy::isInstalled() {
    return commands_.output(kProgram, {"writable", kSchema, kMode}) == "true";
}

std::string GnomeProxy::activeAutoProxyURL() {
    return get(kMode) == "auto" ? get(kAddress) : std::string();
}

void GnomeProxy::setAutoProxyURL(std::string_view url) {
    set(kAddress, url);
}

void GnomeProxy::setAutoProxyState(bool on) {
    if (on) {
        set(kMode, "auto");
    } else {
        leaveMode("auto");
    }
}

void GnomeProxy::setManualProxiesOff() {
    leaveMode("manual");
}

std::string GnomeProxy::get(const char* key) const {
    const auto printed = commands_.output(kProgram, {"get", kSchema, key});
    return printed ? unquotedVariant(*printed).value_or("") : std::string();
}

void GnomeProxy::set(const char* key, std::string_view value) const {
    commands_.run(kProgram, {"set", kSchema, key, quotedVariant(value)});
}

void GnomeProxy::leaveMode(std::string_view mode) const {
    if (get(kMode) == mode) {
        set(kMode, "none");
    }
}

} // namespace fernwick::platform
