#include "DesktopHarness.h"
#include "NetworkProxySettingsContract.h"
#include "platform/macos/NetworkSetup.h"
#include "support/FakeCommandRunner.h"
#include "support/FakeNetworkProxySettings.h"

#include <chrono>
#include <csignal>

namespace fernwick::platform {

namespace {

using namespace std::chrono_literals;

constexpr auto kURL = "http://127.0.0.1:8899/proxy.pac";

class FakeSettingsHarness {
public:
    NetworkProxySettings& settings() { return fake_; }
    static std::string service() { return "Wi-Fi"; }
    [[nodiscard]] std::string chosen() const {
        const auto state = fake_.state(service());
        return state.autoProxy ? state.url : state.socks || state.web || state.secureWeb ? "manual" : "none";
    }
    void chooseManual() { fake_.setState(service(), {.socks = true, .web = true, .secureWeb = true}); }

    fakes::FakeNetworkProxySettings fake_;
};

// networksetup as its manual has it, over settings in memory.
class NetworkSetupHarness : public FakeSettingsHarness {
public:
    NetworkSetupHarness() {
        runner_.setResponder(
            [this](const CommandRequest& request) { return CommandResult{0, obey(request.arguments), ""}; });
    }
    NetworkProxySettings& settings() { return settings_; }

private:
    std::string obey(const std::vector<std::string>& words) {
        if (words[0] == "-listallnetworkservices") {
            return "An asterisk (*) denotes that a network service is disabled.\nWi-Fi\n*USB LAN\n";
        }
        if (words[0] == "-getautoproxyurl") {
            const auto state = fake_.state(words[1]);
            return "URL: " + (state.url.empty() ? "(null)" : state.url) +
                   "\nEnabled: " + (state.autoProxy ? "Yes" : "No") + "\n";
        }
        if (words[0] == "-setautoproxyurl") {
            fake_.setAutoProxyURL(words[1], words[2]);
            fake_.setAutoProxyState(words[1], true);
        } else if (words[0] == "-setautoproxystate") {
            fake_.setAutoProxyState(words[1], words[2] == "on");
        } else if (words[0] == "-setsocksfirewallproxystate") {
            fake_.setSocksFirewallProxyOff(words[1]);
        } else if (words[0] == "-setwebproxystate") {
            fake_.setWebProxyOff(words[1]);
        } else if (words[0] == "-setsecurewebproxystate") {
            fake_.setSecureWebProxyOff(words[1]);
        }
        return "";
    }

    fakes::FakeCommandRunner runner_;
    NetworkSetup settings_{runner_};
};

void switchOn(NetworkProxySettings& settings, const std::string& service) {
    settings.setAutoProxyURL(service, kURL);
    settings.setAutoProxyState(service, true);
}

} // namespace

INSTANTIATE_TYPED_TEST_SUITE_P(Fake, NetworkProxySettingsContract, FakeSettingsHarness);
INSTANTIATE_TYPED_TEST_SUITE_P(NetworkSetup, NetworkProxySettingsContract, NetworkSetupHarness);
INSTANTIATE_TYPED_TEST_SUITE_P(Gnome, NetworkProxySettingsContract, GnomeHarness);
INSTANTIATE_TYPED_TEST_SUITE_P(Kde, NetworkProxySettingsContract, KdeHarness);

TEST(DesktopProxySettings, BothDesktopsAreListedAndKeepTheirOwn) {
    GnomeHarness harness;
    EXPECT_THAT(harness.settings().allNetworkServices(), testing::ElementsAre("GNOME", "KDE"));
    switchOn(harness.settings(), "KDE");
    EXPECT_EQ(harness.chosen(), "none");
    EXPECT_EQ(harness.settings().activeAutoProxyURL("KDE"), kURL);
}

TEST(DesktopProxySettings, GnomeIsReadBackByASecondProgram) {
    GnomeHarness harness;
    switchOn(harness.settings(), "GNOME");
    EXPECT_EQ(harness.get("autoconfig-url"), "'http://127.0.0.1:8899/proxy.pac'");
    EXPECT_EQ(harness.get("mode"), "'auto'");
}

TEST(DesktopProxySettings, ManualHostsAreKept) {
    GnomeHarness harness;
    static_cast<void>(harness.byOther("/usr/bin/gsettings",
                                      {"set", "org.gnome.system.proxy.socks", "host", "proxy.example"}));
    harness.chooseManual();
    harness.settings().setSocksFirewallProxyOff("GNOME");
    EXPECT_EQ(harness.chosen(), "none");
    EXPECT_EQ(harness.byOther("/usr/bin/gsettings", {"get", "org.gnome.system.proxy.socks", "host"}),
              "'proxy.example'");
}

TEST(DesktopProxySettings, KdeTellsItsProgramsToReadAgain) {
    KdeHarness harness;
    TestProgram monitor("/usr/bin/dbus-monitor", {"--address", harness.bus().address(), "path=/KIO/Scheduler"});
    ASSERT_TRUE(fakes::waitUntil([&] { return monitor.output().contains("NameLost"); })); // it listens
    harness.settings().setAutoProxyURL("KDE", kURL);
    EXPECT_TRUE(fakes::waitUntil([&] {
        return monitor.output().contains(
            "path=/KIO/Scheduler; interface=org.kde.KIO.Scheduler; member=reparseSlaveConfiguration\n"
            "   string \"\"\n");
    })) << monitor.output();
}

TEST(DesktopProxySettings, WithoutABusNothingIsSetAndNothingWaits) {
    GnomeHarness harness;
    const auto with = harness.environment();
    harness.environment()["DISPLAY"] = ":4711"; // with one the libraries would start a bus
    harness.environment().erase("DBUS_SESSION_BUS_ADDRESS");
    switchOn(harness.settings(), "GNOME");
    EXPECT_EQ(harness.settings().activeAutoProxyURL("GNOME"), "");
    EXPECT_EQ(harness.settings().allNetworkServices(), std::vector<std::string>({"GNOME", "KDE"}));
    harness.environment() = with;
    EXPECT_EQ(harness.chosen(), "none");
}

TEST(DesktopProxySettings, SettingsInMemoryAreNobodysSettings) {
    GnomeHarness harness;
    const auto with = harness.environment();
    harness.environment()["GSETTINGS_BACKEND"] = "memory";
    switchOn(harness.settings(), "GNOME");
    EXPECT_EQ(harness.settings().activeAutoProxyURL("GNOME"), "");
    harness.environment() = with;
    EXPECT_EQ(harness.chosen(), "none");
}

TEST(DesktopProxySettings, StuckServiceIsWaitedForTwoSecondsAtTheMost) {
    GnomeHarness harness;
    harness.dconf().signal(SIGSTOP);
    const auto start = std::chrono::steady_clock::now();
    harness.settings().setAutoProxyState("GNOME", true);
    const auto taken = std::chrono::steady_clock::now() - start;
    harness.dconf().signal(SIGCONT);
    EXPECT_GE(taken, 1900ms);
    EXPECT_LT(taken, 20s);
}

} // namespace fernwick::platform
