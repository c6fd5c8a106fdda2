// Our dates, languages and time zones as ICU wants them.
// Threads: any.
#pragma once

#include "support/Date.h"

#include <unicode/locid.h>
#include <unicode/timezone.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <string>

namespace fernwick::support {

// The date as ICU counts: in milliseconds, and no further away than its calendars reach, which is some hundred
// thousand years in both directions.
[[nodiscard]] inline UDate millisecondsOf(Date date) {
    constexpr double kFarthest = 8.64e15;
    return std::clamp(date.secondsSinceUnixEpoch() * 1000.0, -kFarthest, kFarthest);
}

// The locale of that name (an ICU id as "en_US"), or the user's if it is empty.
[[nodiscard]] inline icu::Locale localeNamed(const std::string& name) {
    return name.empty() ? icu::Locale::getDefault() : icu::Locale(name.c_str());
}

// The time zone of that name (as "Europe/Berlin"), or the machine's if it is empty. The caller owns it.
[[nodiscard]] inline icu::TimeZone* newZone(const std::string& name) {
    return name.empty() ? icu::TimeZone::createDefault()
                        : icu::TimeZone::createTimeZone(icu::UnicodeString::fromUTF8(name));
}

} // namespace fernwick::support
