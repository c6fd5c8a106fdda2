// What every NetworkProxySettings does, the fake one, networksetup's and those of the desktops.
#pragma once

#include "platform/NetworkProxySettings.h"

#include <gmock/gmock.h>

#include <string>

namespace fernwick::platform {

// What another program sees of a service: "none", "manual", or the address of the proxy auto-config text.
// `Harness` has settings(), service(), chosen(), which tells just that, and chooseManual(), as the user does.
template <class Harness>
class NetworkProxySettingsContract : public testing::Test {
protected:
    static constexpr auto kURL = "http://127.0.0.1:8899/proxy.pac";

    NetworkProxySettings& settings() { return harness_.settings(); }
    std::string service() { return harness_.service(); }
    std::string active() { return settings().activeAutoProxyURL(service()); }
    std::string chosen() { return harness_.chosen(); }

    void switchOn(const std::string& url = kURL) {
        settings().setAutoProxyURL(service(), url);
        settings().setAutoProxyState(service(), true);
    }
    void switchOff() { settings().setAutoProxyState(service(), false); }
    void switchManualOff() {
        settings().setSocksFirewallProxyOff(service());
        settings().setWebProxyOff(service());
        settings().setSecureWebProxyOff(service());
    }

    Harness harness_;
};

TYPED_TEST_SUITE_P(NetworkProxySettingsContract);

TYPED_TEST_P(NetworkProxySettingsContract, ListsTheServiceWithNothingInForce) {
    EXPECT_THAT(this->settings().allNetworkServices(), testing::Contains(this->service()));
    EXPECT_EQ(this->active(), "");
    EXPECT_EQ(this->chosen(), "none");
}

TYPED_TEST_P(NetworkProxySettingsContract, AddressIsInForceUntilItIsSwitchedOff) {
    this->switchOn();
    EXPECT_EQ(this->active(), this->kURL);
    EXPECT_EQ(this->chosen(), this->kURL);
    this->switchOff();
    EXPECT_EQ(this->active(), "");
    EXPECT_EQ(this->chosen(), "none");
}

TYPED_TEST_P(NetworkProxySettingsContract, SwitchedOnAgainItHasTheAddressThatWasKept) {
    this->switchOn();
    this->switchOff();
    this->settings().setAutoProxyState(this->service(), true);
    EXPECT_EQ(this->chosen(), this->kURL);
}

TYPED_TEST_P(NetworkProxySettingsContract, NewAddressTakesTheOldOnesPlace) {
    for (const std::string url : {"http://127.0.0.1:1/first.pac", "http://127.0.0.1:2/?it's=\"$HOME\"&\\n"}) {
        this->switchOn(url);
        EXPECT_EQ(this->active(), url);
        EXPECT_EQ(this->chosen(), url);
    }
}

TYPED_TEST_P(NetworkProxySettingsContract, ManualProxiesStayWhenTheAutoProxyIsSwitchedOff) {
    this->harness_.chooseManual();
    this->switchOff();
    EXPECT_EQ(this->active(), "");
    EXPECT_EQ(this->chosen(), "manual");
}

TYPED_TEST_P(NetworkProxySettingsContract, ManualProxiesAreSwitchedOff) {
    this->harness_.chooseManual();
    this->switchManualOff();
    EXPECT_EQ(this->chosen(), "none");
}

TYPED_TEST_P(NetworkProxySettingsContract, AutoProxyStaysWhenTheManualOnesAreSwitchedOff) {
    this->switchOn();
    this->switchManualOff();
    EXPECT_EQ(this->active(), this->kURL);
    EXPECT_EQ(this->chosen(), this->kURL);
}

TYPED_TEST_P(NetworkProxySettingsContract, UnknownServiceChangesNothing) {
    this->settings().setAutoProxyURL("nowhere", this->kURL);
    this->settings().setAutoProxyState("nowhere", true);
    EXPECT_EQ(this->chosen(), "none");
}

REGISTER_TYPED_TEST_SUITE_P(NetworkProxySettingsContract, ListsTheServiceWithNothingInForce,
                            AddressIsInForceUntilItIsSwitchedOff, SwitchedOnAgainItHasTheAddressThatWasKept,
                            NewAddressTakesTheOldOnesPlace, ManualProxiesStayWhenTheAutoProxyIsSwitchedOff,
                            ManualProxiesAreSwitchedOff, AutoProxyStaysWhenTheManualOnesAreSwitchedOff,
                            UnknownServiceChangesNothing);

} // namespace fernwick::platform
