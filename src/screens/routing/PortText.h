// The port of a proxy while it is being typed. Threads: any.
#pragma once

#include "support/Integer.h"

#include <QString>

#include <cstdint>
#include <optional>

namespace fernwick {

// Only those characters (as a reader sees them, accents included) that stand for a number in any script.
[[nodiscard]] QString numbersOnly(const QString& text);

// The text as a decimal number, with or without a sign; absent when it is none or does not fit.
[[nodiscard]] inline std::optional<std::int64_t> parsePort(const QString& text) {
    return support::parseInteger<std::int64_t>(text.toStdString());
}

// The same, absent outside of 1 to 65535 too.
[[nodiscard]] inline std::optional<std::int64_t> parsePortInRange(const QString& text) {
    const auto port = parsePort(text);
    return port && *port >= 1 && *port <= 65535 ? port : std::nullopt;
}

} // namespace fernwick
