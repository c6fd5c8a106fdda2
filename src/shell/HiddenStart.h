// A start that nobody asked to see, as at login: the application shows its icon alone. Where there is no place
// for the icon after a while, since a panel may come later than the programs of the login, the main window
// opens after all: otherwise nothing of the application could be reached. Threads: main thread only.
#pragma once

#include "platform/Dispatch.h"
#include "platform/TrayHost.h"
#include "support/Weak.h"

#include <functional>

namespace fernwick {

class HiddenStart {
public:
    // How long a panel that was not there at the first look may still come.
    static constexpr platform::Duration kPatience{10'000};

    // To be made before the host starts to look. The window is opened once at most; both references outlive it.
    HiddenStart(platform::TrayHost& host, platform::Dispatch& dispatch, std::function<void()> openWindow);
    HiddenStart(const HiddenStart&) = delete;
    HiddenStart& operator=(const HiddenStart&) = delete;

private:
    void waitForPanel();

    platform::Dispatch& dispatch_;
    std::function<void()> openWindow_;
    bool hasPlace_ = false;
    support::Subscription appeared_;
    support::Subscription absent_;
    support::WeakSource<HiddenStart> self_{*this};
};

} // namespace fernwick
