// Lines for whoever watches the application's standard output.
// Threads: any.
#pragma once

#include <functional>
#include <string_view>

namespace fernwick {

// Where such a line goes; it comes without a line feed.
using Print = std::function<void(std::string_view line)>;

// Writes the line and a line feed to the standard output, in one piece, at once. An output that is closed or
// full loses it.
void printToStandardOutput(std::string_view line);

} // namespace fernwick
