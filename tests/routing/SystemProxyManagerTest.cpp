#include "routing/SystemProxyManager.h"

#include "support/FakeClock.h"
#include "support/FakeDispatch.h"
#include "support/FakeNetworkProxySettings.h"

#include <gmock/gmock.h>

#include <optional>

namespace fernwick {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Names = std::vector<std::string>;
using namespace std::chrono_literals;

constexpr auto kURL = "http://127.0.0.1:8899/proxy.pac";
constexpr auto kOtherURL = "http://wpad.example/wpad.dat";

class SystemProxyManagerTest : public testing::Test {
protected:
    void haveServices(Names services) { settings_.emplace(std::move(services)); }

    // Made at the call, over the services as they are then. What is published and printed joins the calls.
    [[nodiscard]] SystemProxyManager manager() {
        return {*settings_, clock_, [this](std::string text) { publish(std::move(text)); },
                [this](std::string_view line) { print(line); }};
    }

    void publish(std::string text) {
        published_.push_back(std::move(text));
        callsBeforePublishing_ = settings_->calls().size();
        publishedAt_ = dispatch_.elapsed();
    }
    void print(std::string_view line) {
        printed_.emplace_back(line);
        callsBeforePrinting_ = settings_->calls().size();
        printedAt_ = dispatch_.elapsed();
    }

    static TunnelPortMap onePort() { return {{support::Uuid::random(), "1080"}}; }

    fakes::FakeDispatch dispatch_;
    fakes::FakeClock clock_{dispatch_};
    std::optional<fakes::FakeNetworkProxySettings> settings_{std::in_place};
    Names published_;
    Names printed_;
    std::size_t callsBeforePublishing_ = 0;
    std::size_t callsBeforePrinting_ = 0;
    std::chrono::nanoseconds publishedAt_{};
    std::chrono::nanoseconds printedAt_{};
};

struct ActiveCase {
    const char* name;
    Names all;
    Names active;
};

class ActiveServices : public SystemProxyManagerTest, public testing::WithParamInterface<ActiveCase> {};

} // namespace

TEST_P(ActiveServices, AreTheUsualOnesOrElseAll) {
    haveServices(GetParam().all);
    EXPECT_EQ(manager().activeNetworkServices(), GetParam().active);
    EXPECT_EQ(manager().allNetworkServices(), GetParam().all);
}

INSTANTIATE_TEST_SUITE_P(Table, ActiveServices,
                         testing::Values(ActiveCase{"WiFiOverUsb", {"Wi-Fi", "USB LAN"}, {"Wi-Fi"}},
                                         ActiveCase{"FallBack", {"USB LAN"}, {"USB LAN"}},
                                         ActiveCase{"FallBackToAll", {"GNOME", "KDE"}, {"GNOME", "KDE"}},
                                         ActiveCase{"None", {}, {}},
                                         ActiveCase{"AnyCase", {"WI-FI", "wifi 2", "x"}, {"WI-FI", "wifi 2"}},
                                         ActiveCase{"Within",
                                                    {"My Ethernet Adaptor", "Display", "Thunderbolt Bridge"},
                                                    {"My Ethernet Adaptor", "Thunderbolt Bridge"}},
                                         ActiveCase{"Lookalikes", {"Wi Fi", "Wi‑Fi", "Wi-Fi"}, {"Wi-Fi"}}),
                         [](const auto& info) { return std::string(info.param.name); });

TEST_F(SystemProxyManagerTest, SetPACURLMakesThreeChangesPerActiveServiceAndPrints) {
    haveServices({"Wi-Fi", "USB LAN", "Thunderbolt Bridge"});
    manager().setPACURL(kURL);
    EXPECT_THAT(settings_->calls(),
                ElementsAre("list", "url Wi-Fi http://127.0.0.1:8899/proxy.pac", "auto Wi-Fi on",
                            "socks Wi-Fi off", "url Thunderbolt Bridge http://127.0.0.1:8899/proxy.pac",
                            "auto Thunderbolt Bridge on", "socks Thunderbolt Bridge off"));
    EXPECT_THAT(printed_, ElementsAre("[SystemProxyManager] ✅ PAC URL set: http://127.0.0.1:8899/proxy.pac on "
                                      "[Wi-Fi, Thunderbolt Bridge]"));
    EXPECT_EQ(callsBeforePrinting_, 7U);
    EXPECT_THAT(published_, IsEmpty());
}

TEST_F(SystemProxyManagerTest, RemoveAllProxyMakesFourChangesOnEveryService) {
    haveServices({"Wi-Fi", "USB LAN"});
    manager().removeAllProxy("No active tunnels", false);
    EXPECT_THAT(settings_->calls(), ElementsAre("list", "auto Wi-Fi off", "socks Wi-Fi off", "web Wi-Fi off",
                                                "secureweb Wi-Fi off", "auto USB LAN off", "socks USB LAN off",
                                                "web USB LAN off", "secureweb USB LAN off"));
    EXPECT_THAT(published_, ElementsAre("function FindProxyForURL(url, host) { return \"DIRECT\"; }"));
    EXPECT_EQ(callsBeforePublishing_, 9U);
    EXPECT_THAT(printed_, ElementsAre("[SystemProxyManager] 🔴 All proxy removed on 2 interface(s) "
                                      "(No active tunnels)"));
    EXPECT_EQ(printedAt_, 0ns);
}

TEST_F(SystemProxyManagerTest, RemoveAllProxyWaitsBetweenPublishingAndPrinting) {
    manager().removeAllProxy("App terminated", true);
    EXPECT_EQ(publishedAt_, 0ns);
    EXPECT_EQ(printedAt_, 800ms);
    EXPECT_EQ(dispatch_.elapsed(), 800ms);
    EXPECT_THAT(printed_,
                ElementsAre("[SystemProxyManager] 🔴 All proxy removed on 1 interface(s) (App terminated)"));
}

TEST_F(SystemProxyManagerTest, LineWithoutReasonHasNoBrackets) {
    manager().removeAllProxy("", false);
    EXPECT_THAT(printed_, ElementsAre("[SystemProxyManager] 🔴 All proxy removed on 1 interface(s)"));
}

TEST_F(SystemProxyManagerTest, RemoveAllProxyClearsTheUsersOwnWebProxies) {
    settings_->setState("Wi-Fi",
                        {.url = kOtherURL, .autoProxy = true, .socks = true, .web = true, .secureWeb = true});
    manager().removeAllProxy("", false);
    const auto left = settings_->state("Wi-Fi");
    EXPECT_FALSE(left.autoProxy || left.socks || left.web || left.secureWeb);
    EXPECT_EQ(left.url, kOtherURL);
}

TEST_F(SystemProxyManagerTest, ApplyWithPortsPublishesBeforeItSets) {
    manager().apply("the text", onePort(), kURL);
    EXPECT_THAT(published_, ElementsAre("the text"));
    EXPECT_EQ(callsBeforePublishing_, 0U);
    EXPECT_EQ(settings_->state("Wi-Fi").url, kURL);
    EXPECT_TRUE(settings_->state("Wi-Fi").autoProxy);
    EXPECT_EQ(printed_.size(), 1U);
}

TEST_F(SystemProxyManagerTest, ApplyLeavesTheUsersOwnWebProxiesAlone) {
    settings_->setState("Wi-Fi", {.socks = true, .web = true, .secureWeb = true});
    manager().apply("the text", onePort(), kURL);
    const auto left = settings_->state("Wi-Fi");
    EXPECT_TRUE(left.web && left.secureWeb);
    EXPECT_FALSE(left.socks);
}

TEST_F(SystemProxyManagerTest, ApplyWithoutPortsPublishesAndSwitchesOffTheActiveServicesOnly) {
    haveServices({"Wi-Fi", "USB LAN", "Ethernet"});
    manager().apply("the text", {}, kURL);
    EXPECT_THAT(published_, ElementsAre("the text"));
    EXPECT_EQ(callsBeforePublishing_, 0U);
    EXPECT_THAT(settings_->calls(), ElementsAre("list", "auto Wi-Fi off", "auto Ethernet off"));
    EXPECT_THAT(printed_, IsEmpty());
}

TEST_F(SystemProxyManagerTest, NoServicesMeansNoChangesAndLinesAllTheSame) {
    settings_->fail();
    manager().setPACURL(kURL);
    manager().removeAllProxy("No active tunnels", false);
    EXPECT_THAT(settings_->calls(), ElementsAre("list", "list"));
    EXPECT_THAT(printed_,
                ElementsAre("[SystemProxyManager] ✅ PAC URL set: http://127.0.0.1:8899/proxy.pac on []",
                            "[SystemProxyManager] 🔴 All proxy removed on 0 interface(s) (No active tunnels)"));
    EXPECT_EQ(published_.size(), 1U);
}

TEST_F(SystemProxyManagerTest, StaleAddressIsSwitchedOffOnWhicheverServiceHasIt) {
    haveServices({"Wi-Fi", "USB LAN", "Ethernet", "Thunderbolt"});
    settings_->setState("Wi-Fi", {.url = kOtherURL, .autoProxy = true});
    settings_->setState("USB LAN", {.url = kURL, .autoProxy = true, .web = true});
    settings_->setState("Ethernet", {.url = kURL});
    manager().clearStale(kURL);
    EXPECT_THAT(settings_->calls(), ElementsAre("list", "url Wi-Fi", "url USB LAN", "auto USB LAN off",
                                                "url Ethernet", "url Thunderbolt"));
    EXPECT_TRUE(settings_->state("Wi-Fi").autoProxy);
    EXPECT_TRUE(settings_->state("USB LAN").web);
    EXPECT_THAT(printed_, IsEmpty());
    EXPECT_THAT(published_, IsEmpty());
}

TEST_F(SystemProxyManagerTest, NoAddressIsNeverStale) {
    manager().clearStale("");
    EXPECT_THAT(settings_->calls(), ElementsAre("list", "url Wi-Fi"));
}

} // namespace fernwick
