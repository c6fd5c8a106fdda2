// The AppleScript that runs a shell line with administrator rights. Threads: any.
#pragma once

#include <string>
#include <string_view>

namespace fernwick::platform {

// The source for NSAppleScript: `do shell script "LINE" with administrator privileges`, each double quote of
// the line written as \". Backslashes are passed as they are, so AppleScript reads a \ of the line as the
// beginning of an escape of its own.
[[nodiscard]] std::string administratorScript(std::string_view line);

} // namespace fernwick::platform
