#include "support/Base64.h"

#include <algorithm>
#include <cstdint>

namespace fernwick::support {

void appendBase64(std::string& out, std::string_view bytes) {
    constexpr std::string_view kAlphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    constexpr std::size_t kGroup = 3;
    for (; !bytes.empty(); bytes.remove_prefix(std::min(kGroup, bytes.size()))) {
        std::uint32_t bits = 0;
        for (std::size_t at = 0; at < kGroup; ++at) {
            bits = bits << 8U | (at < bytes.size() ? static_cast<unsigned char>(bytes[at]) : 0U);
        }
        out += kAlphabet[bits >> 18U & 63U];
        out += kAlphabet[bits >> 12U & 63U];
        out += bytes.size() > 1 ? kAlphabet[bits >> 6U & 63U] : '=';
        out += bytes.size() > 2 ? kAlphabet[bits & 63U] : '=';
    }
}

} // namespace fernwick::support
