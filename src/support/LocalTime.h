// Dates and times of day where the machine is.
// Threads: any.
#pragma once

#include "support/Date.h"

#include <string>

namespace fernwick::support {

// The time of day in the machine's time zone to the second, as in "09:05:07"; parts of a second are cut off.
// For dates of the years 0 to 9999.
[[nodiscard]] std::string localTimeText(Date date);

// The date and the time in the machine's time zone to the second, as in "2026-11-15_20-41-15", which any file
// name may hold. For dates of the years 0 to 9999.
[[nodiscard]] std::string localFileStamp(Date date);

} // namespace fernwick::support
