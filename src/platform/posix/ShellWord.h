// Words for lines of /bin/sh (POSIX.1, "Shell Command Language", 2.2.2 Single-Quotes).
// Threads: any.
#pragma once

#include <string>
#include <string_view>

namespace fernwick::platform {

// The text as one word that the shell leaves as it is: in single quotes, and each single quote as '\''.
[[nodiscard]] std::string shellWord(std::string_view text);

} // namespace fernwick::platform
