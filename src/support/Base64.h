// Base64 with the standard alphabet and padding, without line breaks (RFC 4648, section 4).
// Threads: any.
#pragma once

#include <string>
#include <string_view>

namespace fernwick::support {

// Appends the encoding of the bytes: four characters for each three bytes begun.
void appendBase64(std::string& out, std::string_view bytes);

// How many characters the encoding of `size` bytes has.
[[nodiscard]] constexpr std::size_t base64Size(std::size_t size) {
    return (size + 2) / 3 * 4;
}

} // namespace fernwick::support
