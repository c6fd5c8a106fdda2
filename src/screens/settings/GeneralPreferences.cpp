#include "screens/settings/GeneralPreferences.h"

#include <cstdint>
#include <utility>

namespace fernwick {

bool readPreference(const platform::UserDefaults& defaults, const SwitchPreference& preference) {
    const auto stored = defaults.value(preference.key);
    if (!stored) {
        return preference.byDefault;
    }
    if (const auto* number = stored->as<std::int64_t>()) {
        return *number != 0;
    }
    const auto* on = stored->as<bool>();
    return on != nullptr ? *on : preference.byDefault;
}

std::string readPreference(const platform::UserDefaults& defaults, const TextPreference& preference) {
    const auto stored = defaults.value(preference.key);
    const auto* text = stored ? stored->as<std::string>() : nullptr;
    return text != nullptr ? *text : std::string(preference.byDefault);
}

void writePreference(platform::UserDefaults& defaults, const SwitchPreference& preference, bool on) {
    defaults.set(preference.key, {on});
}

void writePreference(platform::UserDefaults& defaults, const TextPreference& preference, std::string text) {
    defaults.set(preference.key, {std::move(text)});
}

} // namespace fernwick
