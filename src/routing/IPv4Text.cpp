#include "routing/IPv4Text.h"

#include "support/Integer.h"
#include "support/Pieces.h"
#include "support/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>

namespace fernwick {

namespace {

constexpr std::size_t kPieces = 4;

// The numbers among the pieces between dots, if there are exactly four.
template <class T>
std::optional<std::array<T, kPieces>> fourNumbers(std::string_view text) {
    std::array<T, kPieces> numbers{};
    std::size_t count = 0;
    support::forEachPiece(text, '.', [&](std::string_view piece) {
        const auto number = support::parseInteger<T>(piece);
        if (number && count < kPieces) {
            numbers[count] = *number;
        }
        count += number ? 1 : 0;
        return true;
    });
    return count == kPieces ? std::optional(numbers) : std::nullopt;
}

} // namespace

bool isValidIPv4(std::string_view text) {
    return fourNumbers<std::uint8_t>(text).has_value();
}

bool isValidCIDR(std::string_view text) {
    const auto pieces = support::piecesOf(text, '/');
    if (pieces.size() != 2) {
        return false;
    }
    const auto prefix = support::parseInteger<int>(pieces[1]);
    return prefix && *prefix >= 0 && *prefix <= 32 && isValidIPv4(pieces[0]);
}

std::optional<std::uint32_t> ipToUInt32(std::string_view text) {
    const auto numbers = fourNumbers<std::uint32_t>(text);
    if (!numbers) {
        return std::nullopt;
    }
    const auto& [first, second, third, fourth] = *numbers;
    return first << 24U | second << 16U | third << 8U | fourth;
}

bool isIPv4Literal(std::string_view text) {
    std::size_t count = 0;
    const bool numbers = support::forEachPiece(text, '.', [&](std::string_view piece) {
        const auto number = support::parseInteger<std::int64_t>(piece);
        ++count;
        return number && *number < 256;
    });
    return numbers && count == kPieces;
}

std::optional<std::vector<std::string>> ipRangeToCIDRs(std::string_view text) {
    const auto pieces = support::piecesOf(text, '-');
    if (pieces.size() != 2) {
        return std::nullopt;
    }
    const auto first = ipToUInt32(support::trimBlanks(pieces[0]));
    const auto last = ipToUInt32(support::trimBlanks(pieces[1]));
    if (!first || !last || *first > *last) {
        return std::nullopt;
    }
    constexpr std::uint64_t kAllAddresses = std::uint64_t{1}
                                            << 32U; // wider than an address, so that it can end
    std::vector<std::string> networks;
    for (std::uint64_t start = *first; start <= *last;) {
        const auto aligned = start == 0 ? kAllAddresses : start & (~start + 1); // its lowest bit
        const auto size = std::min(aligned, std::bit_floor(*last - start + 1));
        networks.push_back(fmt::format("{}.{}.{}.{}/{}", start >> 24U, start >> 16U & 255U, start >> 8U & 255U,
                                       start & 255U, 32 - std::countr_zero(size)));
        start += size;
    }
    return networks;
}

} // namespace fernwick
