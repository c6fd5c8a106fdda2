// The preferences of the tab "General", by their names in the user defaults. Each is read and written there and
// kept nowhere else. A value of another type counts as none.
// Threads: main thread only.
#pragma once

#include "platform/UserDefaults.h"

#include <array>
#include <string>
#include <string_view>

namespace fernwick {

// Where the application shows itself: the choices on screen, and what is stored.
inline constexpr std::array<std::string_view, 3> kDisplayOptions{"Dock icon", "Menu bar icon", "Both"};

// A preference that is on or off.
struct SwitchPreference {
    std::string_view key;
    bool byDefault;
};

// A preference that is a text.
struct TextPreference {
    std::string_view key;
    std::string_view byDefault;
};

inline constexpr TextPreference kShowAsOption{"showAsOption", "Menu bar icon"};
inline constexpr SwitchPreference kLaunchAtLogin{"launchAtLogin", false};
inline constexpr SwitchPreference kShowStatusInMenuBar{"showStatusInMenuBar", true};
inline constexpr TextPreference kDefaultSSHPort{"defaultSSHPort", "22"};
inline constexpr SwitchPreference kConnectOnLaunch{"connectOnLaunch", false};

// What is stored, or the default. A whole number is on unless it is zero, as property lists of old have it.
[[nodiscard]] bool readPreference(const platform::UserDefaults& defaults, const SwitchPreference& preference);
[[nodiscard]] std::string readPreference(const platform::UserDefaults& defaults,
                                         const TextPreference& preference);

void writePreference(platform::UserDefaults& defaults, const SwitchPreference& preference, bool on);
void writePreference(platform::UserDefaults& defaults, const TextPreference& preference, std::string text);

} // namespace fernwick
