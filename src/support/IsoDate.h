// Dates as ISO 8601 writes them.
// Threads: any.
#pragma once

#include "support/Date.h"

#include <string>

namespace fernwick::support {

// The date in UTC to the second, as in "2026-01-01T00:00:00Z"; parts of a second are cut off. For dates of the
// years 0 to 9999.
[[nodiscard]] std::string iso8601Text(Date date);

} // namespace fernwick::support
