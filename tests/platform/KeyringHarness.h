// A keyring of a test's own: gnome-keyring on a private session bus, in a home of its own.
#pragma once

#include "PrivateBus.h"
#include "platform/linux/SecretServiceKeychain.h"
#include "support/FakeHostEnvironment.h"

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>

namespace fernwick::platform {

class KeyringHarness {
public:
    static constexpr auto kService = "org.freedesktop.secrets";

    KeyringHarness() {
        home_.write("password", "pw");
        std::filesystem::create_directory(home_ / "runtime");
        std::filesystem::permissions(home_ / "runtime", std::filesystem::perms::owner_all);
        useBus(bus_->address());
        startUnlocked();
    }
    KeyringHarness(const KeyringHarness&) = delete;
    KeyringHarness& operator=(const KeyringHarness&) = delete;
    ~KeyringHarness() { unsetenv("DBUS_SESSION_BUS_ADDRESS"); }

    // Made at the first use, with what the environment says then.
    Keychain& keychain() {
        if (!keychain_) {
            keychain_.emplace(host_);
        }
        return *keychain_;
    }
    void endKeychain() { keychain_.reset(); }

    // Where the keychain looks for the bus; libsecret reads it from the process's environment.
    void useBus(const std::string& address) {
        setenv("DBUS_SESSION_BUS_ADDRESS", address.c_str(), 1);
        host_.environment["DBUS_SESSION_BUS_ADDRESS"] = address;
    }
    void endBus() { bus_.reset(); }
    PrivateBus& bus() { return *bus_; }

    // A new daemon; the items lie in the home.
    void startUnlocked() { start("--unlock < '" + (home_ / "password") + "'"); }
    void startLocked() { start(""); }
    void end() {
        daemon_.reset();
        EXPECT_TRUE(fakes::waitUntil([&] { return !bus_->hasOwner(kService); }));
    }
    void lock() const {
        EXPECT_NE(bus_->call(kService, "/org/freedesktop/secrets", "org.freedesktop.Secret.Service.Lock",
                             {"['/org/freedesktop/secrets/collection/login']"}),
                  "");
    }
    void stop() const { daemon_->signal(SIGSTOP); }
    void resume() const { daemon_->signal(SIGCONT); }

    Environment& environment() { return host_.environment; }

    // What another program does with the keyring.
    [[nodiscard]] std::string byOther(const std::vector<std::string>& arguments) const {
        const auto environment = variables();
        return outputOf(FERNWICK_KEYRING_PROGRAM, arguments, &environment);
    }

    [[nodiscard]] const fakes::TemporaryFolder& home() const { return home_; }

private:
    [[nodiscard]] Environment variables() const {
        return {{"HOME", home_.path()},
                {"PATH", "/usr/bin:/bin"},
                {"XDG_RUNTIME_DIR", home_ / "runtime"},
                {"DBUS_SESSION_BUS_ADDRESS", bus_->address()}};
    }

    void start(const std::string& how) {
        daemon_.reset();
        const auto environment = variables();
        const auto command = "exec gnome-keyring-daemon --foreground --components=secrets " + how;
        daemon_ =
            std::make_unique<TestProgram>("/bin/sh", std::vector<std::string>{"-c", command}, &environment);
        if (!fakes::waitUntil([this] { return bus_->hasOwner(kService); })) {
            throw std::runtime_error("gnome-keyring-daemon does not come up");
        }
    }

    fakes::TemporaryFolder home_;
    std::unique_ptr<PrivateBus> bus_ = std::make_unique<PrivateBus>();
    std::unique_ptr<TestProgram> daemon_;
    fakes::FakeHostEnvironment host_;
    std::optional<SecretServiceKeychain> keychain_; // goes first
};

} // namespace fernwick::platform
