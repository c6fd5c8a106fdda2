#include "platform/macos/NetworkSetup.h"
#include "support/FakeCommandRunner.h"

#include <gmock/gmock.h>

#include <cerrno>

namespace fernwick::platform {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Arguments = std::vector<std::string>;

constexpr auto kProgram = "/usr/sbin/networksetup";

struct Change {
    const char* name;
    void (*make)(NetworkProxySettings& settings);
    Arguments arguments;
};

class NetworkSetupChange : public testing::TestWithParam<Change> {};

struct Answer {
    const char* name;
    const char* output;
    const char* url;
};

class AutoProxyURL : public testing::TestWithParam<Answer> {};

} // namespace

TEST_P(NetworkSetupChange, IsOneRunWithTheseArguments) {
    fakes::FakeCommandRunner runner;
    NetworkSetup settings(runner);
    GetParam().make(settings);
    ASSERT_EQ(runner.requests().size(), 1U);
    const auto request = runner.requests().front();
    EXPECT_EQ(request.executable, kProgram);
    EXPECT_EQ(request.arguments, GetParam().arguments);
    EXPECT_FALSE(request.environment || request.timeLimit);
}

INSTANTIATE_TEST_SUITE_P(
    Table, NetworkSetupChange,
    testing::Values(Change{"URL",
                           [](auto& settings) {
                               settings.setAutoProxyURL("USB LAN", "http://127.0.0.1:8899/p");
                           },
                           {"-setautoproxyurl", "USB LAN", "http://127.0.0.1:8899/p"}},
                    Change{"On",
                           [](auto& settings) { settings.setAutoProxyState("Wi-Fi", true); },
                           {"-setautoproxystate", "Wi-Fi", "on"}},
                    Change{"Off",
                           [](auto& settings) { settings.setAutoProxyState("Wi-Fi", false); },
                           {"-setautoproxystate", "Wi-Fi", "off"}},
                    Change{"Socks",
                           [](auto& settings) { settings.setSocksFirewallProxyOff("Wi-Fi"); },
                           {"-setsocksfirewallproxystate", "Wi-Fi", "off"}},
                    Change{"Web",
                           [](auto& settings) { settings.setWebProxyOff("Wi-Fi"); },
                           {"-setwebproxystate", "Wi-Fi", "off"}},
                    Change{"SecureWeb",
                           [](auto& settings) { settings.setSecureWebProxyOff("Wi-Fi"); },
                           {"-setsecurewebproxystate", "Wi-Fi", "off"}}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(NetworkSetup, ListsEnabledServicesInOrder) {
    fakes::FakeCommandRunner runner;
    runner.answer(kProgram, CommandResult{0,
                                          "An asterisk (*) denotes that a network service is disabled.\n"
                                          "Wi-Fi\n*Bluetooth PAN\nUSB LAN\n",
                                          ""});
    EXPECT_THAT(NetworkSetup(runner).allNetworkServices(), ElementsAre("Wi-Fi", "USB LAN"));
    EXPECT_THAT(runner.lines(), ElementsAre("/usr/sbin/networksetup -listallnetworkservices"));
}

TEST(NetworkSetup, ExitStatusIsNotLookedAt) {
    fakes::FakeCommandRunner runner;
    runner.answer(kProgram, CommandResult{14, "Wi-Fi\n", "** Error: something **\n"});
    EXPECT_THAT(NetworkSetup(runner).allNetworkServices(), ElementsAre("Wi-Fi"));
}

TEST(NetworkSetup, MissingProgramHasNoServicesAndNoAddress) {
    fakes::FakeCommandRunner runner;
    NetworkSetup settings(runner);
    EXPECT_THAT(settings.allNetworkServices(), IsEmpty());
    EXPECT_EQ(settings.activeAutoProxyURL("Wi-Fi"), "");
}

TEST(NetworkSetup, ServiceNamesAreTrimmedAndKeepTheirInside) {
    EXPECT_THAT(parseNetworkServices(" \tMạng dây  2 \t\n\n \t \n  *off\n\tUSB 10/100\tLAN"),
                ElementsAre("Mạng dây  2", "USB 10/100\tLAN"));
}

TEST(NetworkSetup, OutputThatIsNotUtf8HasNoServices) {
    EXPECT_THAT(parseNetworkServices("Wi-Fi\n\xff\xfe\n"), IsEmpty());
    EXPECT_THAT(parseNetworkServices(""), IsEmpty());
}

TEST(NetworkSetup, AsksForTheAddressOfOneService) {
    fakes::FakeCommandRunner runner;
    runner.answer(kProgram, CommandResult{0, "URL: http://127.0.0.1:8899/proxy.pac\nEnabled: Yes\n", ""});
    EXPECT_EQ(NetworkSetup(runner).activeAutoProxyURL("USB LAN"), "http://127.0.0.1:8899/proxy.pac");
    EXPECT_EQ(runner.requests().front().arguments, Arguments({"-getautoproxyurl", "USB LAN"}));
}

TEST_P(AutoProxyURL, IsWhatIsEnabled) {
    EXPECT_EQ(parseAutoProxyURL(GetParam().output), GetParam().url);
}

INSTANTIATE_TEST_SUITE_P(Table, AutoProxyURL,
                         testing::Values(Answer{"Enabled", "URL: http://a/p\nEnabled: Yes\n", "http://a/p"},
                                         Answer{"Disabled", "URL: http://a/p\nEnabled: No\n", ""},
                                         Answer{"Never", "URL: (null)\nEnabled: No\n", ""},
                                         Answer{"NullYetEnabled", "URL: (null)\nEnabled: Yes\n", ""},
                                         Answer{"OtherOrder", "Enabled: Yes\nURL: http://a/p", "http://a/p"},
                                         Answer{"CutOff", "URL: http://a/p\nEnab", ""},
                                         Answer{"Garbage", "** Error: x is not a recognized service.\n", ""},
                                         Answer{"Empty", "", ""}),
                         [](const auto& info) { return std::string(info.param.name); });

} // namespace fernwick::platform
