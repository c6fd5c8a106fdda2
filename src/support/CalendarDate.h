// A moment told by its date and its time of day, as a person writes them: "Nov 15, 2026, 8:41 PM".
// Threads: one at a time.
#pragma once

#include "support/Date.h"

#include <memory>
#include <string>

namespace fernwick::support {

class CalendarDateFormatter {
public:
    // In the language of that locale (an ICU id as "en_US") and in that time zone (as "Europe/Berlin"); without
    // them the user's. What the language needs is loaded by the first call of text().
    explicit CalendarDateFormatter(std::string locale = {}, std::string timeZone = {});
    CalendarDateFormatter(const CalendarDateFormatter&) = delete;
    CalendarDateFormatter& operator=(const CalendarDateFormatter&) = delete;
    ~CalendarDateFormatter();

    // The date in the language's medium form, and the time to the minute. UTF-8, in which the language may put
    // blanks that do not break; empty for a date that is no number.
    [[nodiscard]] std::string text(Date date);

private:
    struct Language;

    std::string locale_;
    std::string timeZone_;
    std::unique_ptr<Language> language_;
};

} // namespace fernwick::support
