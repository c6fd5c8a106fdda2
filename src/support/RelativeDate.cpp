#include "support/RelativeDate.h"

#include "support/IcuTime.h"

#include <unicode/calendar.h>
#include <unicode/numfmt.h>
#include <unicode/reldatefmt.h>

#include <array>
#include <cmath>
#include <utility>

namespace fernwick::support {
namespace {

struct Unit {
    UCalendarDateFields field;
    URelativeDateTimeUnit unit;
};

// From the largest down.
constexpr std::array kUnits{
    Unit{UCAL_YEAR, UDAT_REL_UNIT_YEAR},         Unit{UCAL_MONTH, UDAT_REL_UNIT_MONTH},
    Unit{UCAL_WEEK_OF_YEAR, UDAT_REL_UNIT_WEEK}, Unit{UCAL_DATE, UDAT_REL_UNIT_DAY},
    Unit{UCAL_HOUR, UDAT_REL_UNIT_HOUR},         Unit{UCAL_MINUTE, UDAT_REL_UNIT_MINUTE}};

} // namespace

struct RelativeDateFormatter::Language {
    Language(const std::string& locale, const std::string& timeZone)
        : formatter(localeNamed(locale), nullptr, UDAT_STYLE_SHORT, UDISPCTX_CAPITALIZATION_NONE, status),
          calendar(icu::Calendar::createInstance(newZone(timeZone), localeNamed(locale), status)) {}

    UErrorCode status = U_ZERO_ERROR;
    icu::RelativeDateTimeFormatter formatter;
    std::unique_ptr<icu::Calendar> calendar;
};

RelativeDateFormatter::RelativeDateFormatter(std::string locale, std::string timeZone)
    : locale_(std::move(locale)), timeZone_(std::move(timeZone)) {}

RelativeDateFormatter::~RelativeDateFormatter() = default;

std::string RelativeDateFormatter::text(Date date, Date now) {
    if (!language_) {
        language_ = std::make_unique<Language>(locale_, timeZone_);
    }
    UErrorCode status = language_->status;
    if (U_FAILURE(status) || std::isnan(date.secondsSinceReference) || std::isnan(now.secondsSinceReference)) {
        return {};
    }
    icu::Calendar& calendar = *language_->calendar;
    const UDate when = millisecondsOf(date);
    calendar.setTime(millisecondsOf(now), status);
    double count = 0;
    URelativeDateTimeUnit unit = UDAT_REL_UNIT_SECOND;
    for (const Unit& each : kUnits) {
        // moves the calendar on by what it returns
        count = calendar.fieldDifference(when, each.field, status);
        if (U_FAILURE(status) || count != 0) {
            unit = each.unit;
            break;
        }
    }
    if (count == 0) {
        count = calendar.fieldDifference(when, UCAL_SECOND, status);
        // Less than a second ago is ago, and not ahead: the sign of zero says so.
        count = std::copysign(count, date <= now ? -1.0 : 1.0);
    }
    icu::UnicodeString told;
    language_->formatter.formatNumeric(count, unit, told, status);
    std::string utf8;
    return U_SUCCESS(status) ? told.toUTF8String(utf8) : std::string();
}

} // namespace fernwick::support
