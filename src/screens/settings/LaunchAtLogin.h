// The preference "Launch at login", which the system has a say in: where it refuses a change, the preference
// goes back, later on the main queue, and nobody is told why. Going back asks the system nothing, since a
// system that refuses both ways would be asked for ever. Threads: main thread only.
#pragma once

#include "platform/Dispatch.h"
#include "platform/LoginItem.h"
#include "platform/UserDefaults.h"
#include "support/Weak.h"

#include <functional>

namespace fernwick {

class LaunchAtLogin {
public:
    // `wentBack` is called with what the preference is again. The references outlive every queued call.
    LaunchAtLogin(platform::UserDefaults& defaults, platform::LoginItem& loginItem,
                  platform::Dispatch& dispatch, std::function<void(bool on)> wentBack);

    [[nodiscard]] bool isOn() const;

    // Stores the preference and asks the system to go along.
    void setOn(bool on);

private:
    platform::UserDefaults& defaults_;
    platform::LoginItem& loginItem_;
    platform::Dispatch& dispatch_;
    std::function<void(bool on)> wentBack_;
    support::WeakSource<LaunchAtLogin> self_;
};

} // namespace fernwick
