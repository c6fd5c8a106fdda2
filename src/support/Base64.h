// Base64 with the standard alphabet and padding, without line breaks (RFC 4648, section 4).
// Threads: any.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace fernwick::support {

// Appends the encoding of the bytes: four characters for each three bytes begun.
void appendBase64(std::string& out, std::string_view bytes);

// How many characters the encoding of `size` bytes has.
[[nodiscard]] constexpr std::size_t base64Size(std::size_t size) {
    return (size + 2) / 3 * 4;
}

// The bytes that the text stands for. Nothing when it has a character beyond the alphabet, line breaks and
// blanks included, or when the padding is missing or anywhere but at its end. The bits that a last group leaves
// over may be set (RFC 4648, section 3.5, leaves that open).
[[nodiscard]] std::optional<std::string> decodeBase64(std::string_view text);

} // namespace fernwick::support
