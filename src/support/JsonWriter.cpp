#include "support/JsonWriter.h"

#include "support/Text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace fernwick::support {
namespace {

// The longest text of a double that `to_chars` makes: sign, 17 digits, point, and an exponent of 5 characters.
constexpr std::size_t kNumberRoom = 32;

// From here on doubles are written with an exponent, so that no integer literal ever exceeds 64 bits.
constexpr double kPlainNumberLimit = 1e18;

// The longest escape sequence is "\u001F".
constexpr std::size_t kEscapeRoom = 6;

constexpr std::uint64_t kEveryByte = 0x0101010101010101U;
constexpr std::uint64_t kHighBits = 0x80U * kEveryByte;

// A word with the high bit set of the lowest byte that is zero; of bytes above that one, maybe more.
constexpr std::uint64_t zeroBytes(std::uint64_t word) {
    return (word - kEveryByte) & ~word & kHighBits;
}

// Whether any of eight ASCII or UTF-8 bytes is a quote, a backslash or a control character.
constexpr bool needsEscape(std::uint64_t word) {
    const auto quotes = zeroBytes(word ^ ('"' * kEveryByte));
    const auto backslashes = zeroBytes(word ^ ('\\' * kEveryByte));
    const auto controls = (word - 0x20U * kEveryByte) & ~word & kHighBits;
    return (quotes | backslashes | controls) != 0;
}

// What follows the backslash for each character that is escaped: a letter, 'u' for the long form, 0 for none.
constexpr auto kEscapes = [] {
    std::array<char, 256> escapes{};
    for (std::size_t control = 0; control < 0x20; ++control) {
        escapes[control] = 'u';
    }
    escapes['\b'] = 'b';
    escapes['\t'] = 't';
    escapes['\n'] = 'n';
    escapes['\f'] = 'f';
    escapes['\r'] = 'r';
    escapes['"'] = '"';
    escapes['\\'] = '\\';
    return escapes;
}();

// Writes one character of a string, and returns the end of what it wrote.
char* writeCharacter(char* out, char character) {
    const auto byte = static_cast<unsigned char>(character);
    const char escape = kEscapes[byte];
    if (escape == 0) {
        *out++ = character;
        return out;
    }
    *out++ = '\\';
    *out++ = escape;
    if (escape == 'u') {
        constexpr std::string_view kDigits = "0123456789ABCDEF";
        *out++ = '0';
        *out++ = '0';
        *out++ = kDigits[byte >> 4U];
        *out++ = kDigits[byte & 0xFU];
    }
    return out;
}

} // namespace

bool JsonWriter::write(std::string_view text) {
    char* const begin = room(kEscapeRoom * text.size() + 2);
    char* out = begin;
    *out++ = '"';
    std::uint64_t seen = 0;
    std::size_t at = 0;
    for (std::uint64_t word = 0; text.size() - at >= sizeof word; at += sizeof word) {
        std::memcpy(&word, text.data() + at, sizeof word);
        seen |= word;
        if (!needsEscape(word)) {
            std::memcpy(out, &word, sizeof word);
            out += sizeof word;
            continue;
        }
        for (std::size_t index = 0; index < sizeof word; ++index) {
            out = writeCharacter(out, text[at + index]);
        }
    }
    for (; at < text.size(); ++at) {
        seen |= static_cast<unsigned char>(text[at]);
        out = writeCharacter(out, text[at]);
    }
    *out++ = '"';
    if ((seen & kHighBits) != 0 && !isValidUtf8(text)) {
        return fail("text is not well-formed UTF-8");
    }
    size_ += static_cast<std::size_t>(out - begin);
    return true;
}

bool JsonWriter::write(double number) {
    if (!std::isfinite(number)) {
        return fail("number is not finite");
    }
    char* const begin = room(kNumberRoom);
    const auto end = std::abs(number) < kPlainNumberLimit
                         ? std::to_chars(begin, begin + kNumberRoom, number)
                         : std::to_chars(begin, begin + kNumberRoom, number, std::chars_format::scientific);
    size_ += static_cast<std::size_t>(end.ptr - begin);
    return true;
}

bool JsonWriter::write(std::int64_t number) {
    char* const begin = room(kNumberRoom);
    size_ += static_cast<std::size_t>(std::to_chars(begin, begin + kNumberRoom, number).ptr - begin);
    return true;
}

bool JsonWriter::write(bool value) {
    raw(value ? std::string_view("true") : std::string_view("false"));
    return true;
}

bool JsonWriter::write(const Uuid& uuid) {
    char* const out = room(Uuid::kTextLength + 2);
    out[0] = '"';
    uuid.write(out + 1);
    out[Uuid::kTextLength + 1] = '"';
    size_ += Uuid::kTextLength + 2;
    return true;
}

void JsonWriter::expect(std::size_t bytes, std::size_t count) {
    constexpr std::size_t kMostBytes = 4096; // a few long values say nothing about the others
    room(std::min(bytes + bytes / 8, kMostBytes) * count);
}

bool JsonWriter::failedIn(std::string_view key) {
    error_.path = "." + std::string(key) + error_.path;
    return false;
}

bool JsonWriter::failedIn(std::size_t index) {
    error_.path = "[" + std::to_string(index) + "]" + error_.path;
    return false;
}

void JsonWriter::grow(std::size_t bytes) {
    const std::size_t size = std::max(size_ + bytes, buffer_.size() * 2);
    buffer_.resize_and_overwrite(size, [](char* /*data*/, std::size_t count) { return count; });
}

bool JsonWriter::fail(std::string_view message) {
    error_.message = message;
    return false;
}

} // namespace fernwick::support
