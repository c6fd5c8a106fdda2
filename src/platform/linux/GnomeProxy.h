// GNOME's proxy settings, which most desktops made with GTK share: the keys of org.gnome.system.proxy, by
// gsettings(1).
// Threads: any; see DesktopProxy.
#pragma once

#include "platform/linux/DesktopProxy.h"

namespace fernwick::platform {

// A text as gsettings takes it and prints it (GVariant text format), in single quotes.
[[nodiscard]] std::string quotedVariant(std::string_view text);

// The text that is printed so, in quotes of either kind. Nothing when it is another type's, is cut off, or has
// an escape other than of a quote or backslash.
[[nodiscard]] std::optional<std::string> unquotedVariant(std::string_view printed);

class GnomeProxy final : public DesktopProxy {
public:
    // The runner outlives the settings.
    GnomeProxy(CommandRunner& runner, const HostEnvironment& host) : commands_(runner, host) {}

    // False also when the administrator has locked the settings (dconf(7), "Locks").
    [[nodiscard]] bool isInstalled() override;
    [[nodiscard]] std::string activeAutoProxyURL() override;
    void setAutoProxyURL(std::string_view url) override;
    void setAutoProxyState(bool on) override;
    void setManualProxiesOff() override;

private:
    // The value of a key that is a text; empty when it cannot be read.
    [[nodiscard]] std::string get(const char* key) const;
    void set(const char* key, std::string_view value) const;
    // Sets the mode to "none" if it is `mode` now.
    void leaveMode(std::string_view mode) const;

    DesktopCommands commands_;
};

} // namespace fernwick::platform
