#include "support/Base64.h"

#include <array>
#include <cstdint>

namespace fernwick::support {
namespace {

constexpr std::string_view kAlphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr std::size_t kBytes = 3;      // of a group
constexpr std::size_t kCharacters = 4; // of its text

// The bits of a character, or a bit above them for one that is not in the alphabet.
constexpr std::uint32_t kForeign = 1U << 31U;
constexpr auto kBits = [] {
    std::array<std::uint32_t, 256> bits{};
    bits.fill(kForeign);
    for (std::uint32_t value = 0; value < kAlphabet.size(); ++value) {
        bits[static_cast<unsigned char>(kAlphabet[value])] = value;
    }
    return bits;
}();

// Up to three bytes in the upper bits of 24.
std::uint32_t gather(std::string_view bytes) {
    std::uint32_t bits = 0;
    for (std::size_t at = 0; at < kBytes; ++at) {
        bits = bits << 8U | (at < bytes.size() ? static_cast<unsigned char>(bytes[at]) : 0U);
    }
    return bits;
}

// The 24 bits of a group of four characters, with `kForeign` if any of them is not in the alphabet.
std::uint32_t bitsOf(const char* text) {
    const auto at = [&](std::size_t index) { return kBits[static_cast<unsigned char>(text[index])]; };
    const auto foreign = (at(0) | at(1) | at(2) | at(3)) & kForeign;
    return ((at(0) << 18U | at(1) << 12U | at(2) << 6U | at(3)) & 0xFFFFFFU) | foreign;
}

// Writes whole groups; returns how far the bytes were read.
std::size_t encodeGroups(char* out, std::string_view bytes) {
    std::size_t at = 0;
    for (; bytes.size() - at >= kBytes; at += kBytes) {
        const auto bits = gather({bytes.data() + at, kBytes});
        *out++ = kAlphabet[bits >> 18U & 63U];
        *out++ = kAlphabet[bits >> 12U & 63U];
        *out++ = kAlphabet[bits >> 6U & 63U];
        *out++ = kAlphabet[bits & 63U];
    }
    return at;
}

// Writes the bytes of whole groups; false at a character that is not in the alphabet.
bool decodeGroups(char* out, std::string_view text) {
    std::uint32_t foreign = 0;
    for (std::size_t at = 0; at < text.size(); at += kCharacters) {
        const auto bits = bitsOf(text.data() + at);
        foreign |= bits;
        *out++ = static_cast<char>(bits >> 16U & 0xFFU);
        *out++ = static_cast<char>(bits >> 8U & 0xFFU);
        *out++ = static_cast<char>(bits & 0xFFU);
    }
    return (foreign & kForeign) == 0;
}

// Makes the text that long, without filling it first. The size that the library tells the function is no use:
// GCC 12 tells the room that it made, which may be larger.
template <class Fill>
void resize(std::string& text, std::size_t size, const Fill& fill) {
    text.resize_and_overwrite(size, [&](char* data, std::size_t /*room*/) {
        fill(data);
        return size;
    });
}

} // namespace

void appendBase64(std::string& out, std::string_view bytes) {
    const auto before = out.size();
    const auto size = before + base64Size(bytes.size());
    std::size_t read = 0;
    resize(out, size, [&](char* data) { read = encodeGroups(data + before, bytes); });
    if (const auto rest = bytes.substr(read); !rest.empty()) {
        const auto bits = gather(rest);
        char* const end = out.data() + out.size();
        end[-4] = kAlphabet[bits >> 18U & 63U];
        end[-3] = kAlphabet[bits >> 12U & 63U];
        end[-2] = rest.size() > 1 ? kAlphabet[bits >> 6U & 63U] : '=';
        end[-1] = '=';
    }
}

std::optional<std::string> decodeBase64(std::string_view text) {
    if (text.size() % kCharacters != 0) {
        return std::nullopt;
    }
    const std::size_t padding = text.ends_with("==") ? 2 : text.ends_with('=') ? 1 : 0;
    const auto whole = padding == 0 ? text.size() : text.size() - kCharacters;
    std::string bytes;
    bool valid = true;
    resize(bytes, whole / kCharacters * kBytes,
           [&](char* data) { valid = decodeGroups(data, text.substr(0, whole)); });
    if (padding > 0) {
        std::string last(text.substr(whole));
        last.replace(kCharacters - padding, padding, padding, 'A'); // which stands for no bits
        std::array<char, kBytes> group{};
        valid = decodeGroups(group.data(), last) && valid;
        bytes.append(group.data(), kBytes - padding);
    }
    return valid ? std::optional(std::move(bytes)) : std::nullopt;
}

} // namespace fernwick::support
