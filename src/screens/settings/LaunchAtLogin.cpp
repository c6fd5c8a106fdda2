#include "screens/settings/LaunchAtLogin.h"

#include "screens/settings/GeneralPreferences.h"

#include <utility>

namespace fernwick {

LaunchAtLogin::LaunchAtLogin(platform::UserDefaults& defaults, platform::LoginItem& loginItem,
                             platform::Dispatch& dispatch, std::function<void(bool on)> wentBack)
    : defaults_(defaults),
      loginItem_(loginItem),
      dispatch_(dispatch),
      wentBack_(std::move(wentBack)),
      self_(*this) {}

bool LaunchAtLogin::isOn() const {
    return readPreference(defaults_, kLaunchAtLogin);
}

void LaunchAtLogin::setOn(bool on) {
    writePreference(defaults_, kLaunchAtLogin, on);
    const auto done = on ? loginItem_.enable() : loginItem_.disable();
    if (done) {
        return;
    }
    // By design nobody hears the system's reason. The preference goes back even if the window has gone.
    dispatch_.main([weak = self_.weak(), &defaults = defaults_, on] {
        writePreference(defaults, kLaunchAtLogin, !on);
        if (auto* self = weak.get()) {
            self->wentBack_(!on);
        }
    });
}

} // namespace fernwick
