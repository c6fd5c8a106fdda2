// Text that others wrote, made fit to be drawn on one line. What is stored is never changed by it.
// Threads: any.
#pragma once

#include <QString>

#include <string_view>

namespace fernwick {

// The most characters of a name that are ever laid out; no screen has room for more.
inline constexpr qsizetype kLongestLine = 256;

// The text as one line: line ends, tabs and other control characters become blanks, marks that would turn the
// direction of what follows are left out, and text beyond `limit` characters is cut and ends in an ellipsis.
// Bytes that are not UTF-8 show as the replacement character.
[[nodiscard]] QString displayLine(std::string_view utf8, qsizetype limit = kLongestLine);

} // namespace fernwick
