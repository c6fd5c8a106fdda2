// A moment told by how far it is from now, in the short form of the user's language: "5 min. ago", "in 2 hr.".
// Threads: one at a time.
#pragma once

#include "support/Date.h"

#include <memory>
#include <string>

namespace fernwick::support {

class RelativeDateFormatter {
public:
    // In the language and calendar of that locale (an ICU id as "en_US") and time zone (as "Europe/Berlin");
    // without them the user's. What the language needs is loaded by the first call of text().
    explicit RelativeDateFormatter(std::string locale = {}, std::string timeZone = {});
    RelativeDateFormatter(const RelativeDateFormatter&) = delete;
    RelativeDateFormatter& operator=(const RelativeDateFormatter&) = delete;
    ~RelativeDateFormatter();

    // The date as seen from `now`, always with a number, in the largest unit of the calendar of which at least
    // one whole lies between the two: years, months, weeks, days, hours, minutes or seconds. UTF-8; empty for a
    // date that the calendar cannot tell.
    [[nodiscard]] std::string text(Date date, Date now);

private:
    struct Language;

    std::string locale_;
    std::string timeZone_;
    std::unique_ptr<Language> language_;
};

} // namespace fernwick::support
