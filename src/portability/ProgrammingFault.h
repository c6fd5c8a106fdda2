// The end of a program that was given what it can never be given in the right way.
// Threads: any.
#pragma once

#include <string_view>

namespace fernwick {

// Says on standard error what is wrong, and aborts. For settings that no window lets a person make, so that
// only a preference file that was written by hand holds them.
[[noreturn]] void programmingFault(std::string_view what);

} // namespace fernwick
