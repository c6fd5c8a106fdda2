// Text without the white space of ASCII at both ends. Threads: any.
#pragma once

#include <string_view>

namespace fernwick::platform {

[[nodiscard]] inline std::string_view trimmed(std::string_view text) {
    constexpr std::string_view kWhiteSpace = " \t\r\n\f\v";
    const auto begin = text.find_first_not_of(kWhiteSpace);
    return begin == std::string_view::npos ? std::string_view()
                                           : text.substr(begin, text.find_last_not_of(kWhiteSpace) - begin + 1);
}

} // namespace fernwick::platform
