// A 128-bit identifier (RFC 9562) with the text form that the catalogue's JSON uses.
#pragma once

#include <array>
#include <compare>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace fernwick::support {

struct Uuid {
    static constexpr std::size_t kTextLength = 36;

    std::array<std::uint8_t, 16> bytes{};

    auto operator<=>(const Uuid&) const = default;

    // A random (version 4) identifier from the system's entropy source.
    [[nodiscard]] static Uuid random();

    // Reads the hyphenated 36-character form, in either case; anything else is no UUID.
    [[nodiscard]] static std::optional<Uuid> parse(std::string_view text);

    // The hyphenated form in upper case, 36 characters.
    [[nodiscard]] std::string text() const;

    // Writes the same 36 characters to `out`, without a terminator.
    void write(char* out) const;
};

} // namespace fernwick::support

template <>
struct std::hash<fernwick::support::Uuid> {
    std::size_t operator()(const fernwick::support::Uuid& uuid) const noexcept;
};
