#include "tunnel/StandardErrorLines.h"

#include "support/Text.h"

#include <algorithm>
#include <ranges>

namespace fernwick {

namespace {

// The words looked for are ASCII, and no other letter lower-cases to one of theirs, so ASCII rules do.
std::string lowerCased(std::string_view text) {
    std::string lowered(text);
    std::ranges::transform(lowered, lowered.begin(), [](char letter) {
        return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    });
    return lowered;
}

} // namespace

std::vector<std::string> standardErrorLines(std::string_view bytes) {
    std::vector<std::string> lines;
    if (!support::isValidUtf8(bytes) || support::isWhiteSpace(bytes)) {
        return lines;
    }
    for (const auto line : std::views::split(bytes, '\n')) {
        if (!line.empty()) {
            lines.emplace_back(line.begin(), line.end());
        }
    }
    return lines;
}

LogLevel standardErrorLevel(std::string_view line) {
    const auto lowered = lowerCased(line);
    if (lowered.contains("error") || lowered.contains("denied")) {
        return LogLevel::error;
    }
    return lowered.contains("warning") ? LogLevel::warning : LogLevel::info;
}

} // namespace fernwick
