// Lines that background parts print for whoever started the application from a terminal.
// Threads: any.
#pragma once

#include <functional>
#include <string_view>

namespace fernwick::support {

// Where such lines go; called from any thread, one line without its line feed at a time.
using PrintLine = std::function<void(std::string_view line)>;

// Prints the line and a line feed on the standard output, at once and in one piece. That nobody can read them
// (a closed pipe, a full disk) has no consequence.
void printLine(std::string_view line);

} // namespace fernwick::support
