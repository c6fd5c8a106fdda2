#include "support/Uuid.h"

#include <cstring>
#include <random>

namespace fernwick::support {
namespace {

constexpr std::string_view kDigits = "0123456789ABCDEF";
constexpr std::uint8_t kNoDigit = 0xFF;

// Where the two digits of each byte start in the text form.
constexpr std::array<std::uint8_t, 16> kOffsets = {0, 2, 4, 6, 9, 11, 14, 16, 19, 21, 24, 26, 28, 30, 32, 34};
constexpr std::array<std::size_t, 4> kHyphens = {8, 13, 18, 23};

// The value of each character as a hexadecimal digit.
constexpr auto kDigitValues = [] {
    std::array<std::uint8_t, 256> values{};
    values.fill(kNoDigit);
    for (std::uint8_t value = 0; value < 16; ++value) {
        const auto digit = static_cast<unsigned char>(kDigits[value]);
        values[digit] = value;
        if (value >= 10) {
            values[digit + ('a' - 'A')] = value;
        }
    }
    return values;
}();

// The two digits of each byte value.
constexpr auto kDigitPairs = [] {
    std::array<std::array<char, 2>, 256> pairs{};
    for (std::size_t value = 0; value < pairs.size(); ++value) {
        pairs[value] = {kDigits[value >> 4U], kDigits[value & 0xFU]};
    }
    return pairs;
}();

std::uint8_t digitValue(char digit) {
    return kDigitValues[static_cast<unsigned char>(digit)];
}

} // namespace

Uuid Uuid::random() {
    // Opening the source costs more than drawing from it, by far.
    thread_local std::random_device entropy;
    Uuid uuid;
    for (std::size_t at = 0; at < uuid.bytes.size(); at += sizeof(std::uint32_t)) {
        const std::uint32_t word = entropy();
        std::memcpy(&uuid.bytes[at], &word, sizeof word);
    }
    uuid.bytes[6] = static_cast<std::uint8_t>((uuid.bytes[6] & 0x0FU) | 0x40U); // version 4
    uuid.bytes[8] = static_cast<std::uint8_t>((uuid.bytes[8] & 0x3FU) | 0x80U); // the RFC's variant
    return uuid;
}

std::optional<Uuid> Uuid::parse(std::string_view text) {
    if (text.size() != kTextLength) {
        return std::nullopt;
    }
    for (const auto at : kHyphens) {
        if (text[at] != '-') {
            return std::nullopt;
        }
    }
    Uuid uuid;
    unsigned seen = 0;
    for (std::size_t index = 0; index < uuid.bytes.size(); ++index) {
        const unsigned high = digitValue(text[kOffsets[index]]);
        const unsigned low = digitValue(text[kOffsets[index] + 1U]);
        seen |= high | low;
        uuid.bytes[index] = static_cast<std::uint8_t>(high << 4U | low);
    }
    return seen < 16 ? std::optional(uuid) : std::nullopt;
}

std::string Uuid::text() const {
    std::string text(kTextLength, '-');
    write(text.data());
    return text;
}

void Uuid::write(char* out) const {
    for (std::size_t index = 0; index < bytes.size(); ++index) {
        std::memcpy(out + kOffsets[index], kDigitPairs[bytes[index]].data(), 2);
    }
    for (const auto at : kHyphens) {
        out[at] = '-';
    }
}

} // namespace fernwick::support

std::size_t std::hash<fernwick::support::Uuid>::operator()(const fernwick::support::Uuid& uuid) const noexcept {
    std::array<std::uint64_t, 2> halves{};
    static_assert(sizeof halves == sizeof uuid.bytes);
    std::memcpy(halves.data(), uuid.bytes.data(), sizeof halves);
    // An identifier is mostly random already; the multiplication is for those that are made by hand.
    constexpr std::uint64_t kOddConstant = 0x9E3779B97F4A7C15U; // 2^64 divided by the golden ratio
    std::uint64_t hash = 0;
    for (const auto half : halves) {
        hash = (hash ^ half) * kOddConstant;
        hash ^= hash >> 32U;
    }
    return static_cast<std::size_t>(hash);
}
