// The settings of the desktops on a session bus and in a home of a test's own.
#pragma once

#include "PrivateBus.h"
#include "platform/linux/DesktopProxySettings.h"
#include "platform/posix/PosixCommandRunner.h"
#include "platform/posix/PosixFileSystem.h"
#include "support/FakeHostEnvironment.h"

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace fernwick::platform {

class DesktopHarness {
public:
    DesktopHarness() {
        for (const auto* folder : {"config", "run"}) {
            std::filesystem::create_directory(home_ / folder);
            std::filesystem::permissions(home_ / folder, std::filesystem::perms::owner_all);
        }
        host_.environment = {{"HOME", home_.path()},
                             {"PATH", "/usr/bin:/bin"},
                             {"XDG_CONFIG_HOME", home_ / "config"},
                             {"XDG_RUNTIME_DIR", home_ / "run"},
                             {"DBUS_SESSION_BUS_ADDRESS", bus_.address()}};
        // The test's bus starts nobody by itself.
        dconf_ = std::make_unique<TestProgram>("/usr/libexec/dconf-service", std::vector<std::string>(),
                                               &host_.environment);
        if (!fakes::waitUntil([this] { return bus_.hasOwner("ca.desrt.dconf"); })) {
            throw std::runtime_error("dconf-service does not come up");
        }
    }

    // Made at the first use, with what the environment says then.
    NetworkProxySettings& settings() {
        if (!settings_) {
            settings_ = std::make_unique<DesktopProxySettings>(runner_, host_, files_);
        }
        return *settings_;
    }
    Environment& environment() { return host_.environment; }
    PrivateBus& bus() { return bus_; }
    TestProgram& dconf() { return *dconf_; }
    CommandRunner& runner() { return runner_; }

    // What another program prints, without the line feed at its end.
    [[nodiscard]] std::string byOther(const std::string& program,
                                      const std::vector<std::string>& arguments) const {
        auto text = outputOf(program, arguments, &host_.environment);
        return text.ends_with('\n') ? text.substr(0, text.size() - 1) : text;
    }

private:
    fakes::TemporaryFolder home_;
    PrivateBus bus_;
    fakes::FakeHostEnvironment host_;
    std::unique_ptr<TestProgram> dconf_;
    ChildLauncher launcher_;
    PosixCommandRunner runner_{launcher_};
    PosixFileSystem files_;
    std::unique_ptr<DesktopProxySettings> settings_;
};

class GnomeHarness : public DesktopHarness {
public:
    static std::string service() { return "GNOME"; }
    [[nodiscard]] std::string get(const std::string& key) const {
        return byOther("/usr/bin/gsettings", {"get", "org.gnome.system.proxy", key});
    }
    [[nodiscard]] std::string chosen() const {
        const auto mode = unquotedVariant(get("mode")).value_or("?");
        return mode == "auto" ? unquotedVariant(get("autoconfig-url")).value_or("?") : mode;
    }
    void chooseManual() const {
        static_cast<void>(byOther("/usr/bin/gsettings", {"set", "org.gnome.system.proxy", "mode", "manual"}));
    }
};

class KdeHarness : public DesktopHarness {
public:
    static std::string service() { return "KDE"; }
    [[nodiscard]] std::string chosen() const {
        const auto type = read("ProxyType");
        return type == "2"                   ? read("Proxy Config Script")
               : type == "1"                 ? "manual"
               : type.empty() || type == "0" ? "none"
                                             : "?";
    }
    void chooseManual() const {
        static_cast<void>(byOther("/usr/bin/kwriteconfig5", {"--file", "kioslaverc", "--group",
                                                             "Proxy Settings", "--key", "ProxyType", "1"}));
    }

private:
    [[nodiscard]] std::string read(const std::string& key) const {
        return byOther("/usr/bin/kreadconfig5",
                       {"--file", "kioslaverc", "--group", "Proxy Settings", "--key", key});
    }
};

} // namespace fernwick::platform
