#include "support/CalendarDate.h"

#include "support/IcuTime.h"

#include <unicode/datefmt.h>

#include <cmath>
#include <utility>

namespace fernwick::support {

struct CalendarDateFormatter::Language {
    Language(const std::string& locale, const std::string& timeZone)
        : format(icu::DateFormat::createDateTimeInstance(icu::DateFormat::kMedium, icu::DateFormat::kShort,
                                                         localeNamed(locale))) {
        if (format) {
            format->adoptTimeZone(newZone(timeZone));
        }
    }

    std::unique_ptr<icu::DateFormat> format; // null without ICU's data
};

CalendarDateFormatter::CalendarDateFormatter(std::string locale, std::string timeZone)
    : locale_(std::move(locale)), timeZone_(std::move(timeZone)) {}

CalendarDateFormatter::~CalendarDateFormatter() = default;

std::string CalendarDateFormatter::text(Date date) {
    if (!language_) {
        language_ = std::make_unique<Language>(locale_, timeZone_);
    }
    if (!language_->format || std::isnan(date.secondsSinceReference)) {
        return {};
    }
    icu::UnicodeString told;
    language_->format->format(millisecondsOf(date), told);
    std::string utf8;
    return told.toUTF8String(utf8);
}

} // namespace fernwick::support
