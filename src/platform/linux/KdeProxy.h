// KDE's proxy settings: the group "Proxy Settings" of the file kioslaverc, by KDE's own commands for its
// configuration files, of Plasma 6 where they are and of Plasma 5 otherwise.
// Threads: any; see DesktopProxy.
#pragma once

#include "platform/FileSystem.h"
#include "platform/linux/DesktopProxy.h"

namespace fernwick::platform {

class KdeProxy final : public DesktopProxy {
public:
    // All three outlive the settings, but for the host.
    KdeProxy(CommandRunner& runner, const HostEnvironment& host, FileSystem& files)
        : commands_(runner, host), files_(files) {}

    [[nodiscard]] bool isInstalled() override { return !generation().empty(); }
    [[nodiscard]] std::string activeAutoProxyURL() override;
    void setAutoProxyURL(std::string_view url) override;
    void setAutoProxyState(bool on) override;
    void setManualProxiesOff() override;

private:
    // What the names of the commands end in, "6" or "5"; empty when there are none.
    [[nodiscard]] std::string generation() const;
    // The value of a key; empty when there is none.
    [[nodiscard]] std::string get(const char* key) const;
    // Writes a key, and tells the programs that run to read the file again.
    void set(const char* key, std::string_view value) const;
    // Chooses no proxy if `type` is what is chosen now.
    void leaveType(const char* type) const;

    DesktopCommands commands_;
    FileSystem& files_;
};

} // namespace fernwick::platform
