// Whole numbers in text that people typed.
// Threads: any.
#pragma once

#include <charconv>
#include <concepts>
#include <optional>
#include <string_view>
#include <system_error>

namespace fernwick::support {

// The decimal number that the whole text is: an optional "+" or "-", then digits. Absent for anything else,
// and for a number that the type does not hold.
template <std::integral T>
[[nodiscard]] std::optional<T> parseInteger(std::string_view text) {
    if (text.starts_with('+')) {
        text.remove_prefix(1);
        if (text.starts_with('-')) {
            return std::nullopt;
        }
    }
    T number = 0;
    const auto* const end = text.data() + text.size();
    const auto [stop, failure] = std::from_chars(text.data(), end, number);
    return failure == std::errc{} && stop == end ? std::optional(number) : std::nullopt;
}

} // namespace fernwick::support
