// What an ssh child says on its standard error, as lines for its tunnel's log.
// Threads: any.
#pragma once

#include "catalogue/LogEntry.h"

#include <string>
#include <string_view>
#include <vector>

namespace fernwick {

// The lines of one piece of output, in order, split at line feeds with empty ones dropped. A piece that is not
// valid UTF-8, or is nothing but white space, has none.
[[nodiscard]] std::vector<std::string> standardErrorLines(std::string_view bytes);

// How serious a line is, by the words in it; letter case does not matter.
[[nodiscard]] LogLevel standardErrorLevel(std::string_view line);

} // namespace fernwick
