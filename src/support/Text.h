// Text operations that depend on Unicode or on the user's locale. All text is UTF-8.
// Threads: any.
#pragma once

#include <string>
#include <string_view>

namespace fernwick::support {

// Without the blanks (tabs and the space separators of Unicode, no line ends) at both ends.
[[nodiscard]] std::string_view trimBlanks(std::string_view text);

// Whether the text holds nothing but white space and line ends. Empty text does.
[[nodiscard]] bool isWhiteSpace(std::string_view text);

// Whether the first character stands for a number in any script: a digit, a fraction, a numeral.
[[nodiscard]] bool startsWithNumber(std::string_view text);

// Whether the bytes are well-formed UTF-8.
[[nodiscard]] bool isValidUtf8(std::string_view bytes);

// A search text, prepared once and looked for in many places: a containment test that ignores letter case by
// the user's locale (Turkish dotted and dotless i included) and does not tell composed from decomposed
// characters.
class CaselessNeedle {
public:
    explicit CaselessNeedle(std::string_view needle);

    // Whether `haystack` contains the search text. An empty search text is in every text.
    [[nodiscard]] bool isIn(std::string_view haystack) const;

private:
    std::string folded_; // in the form that haystacks are folded to
    bool turkic_ = false;
};

} // namespace fernwick::support
