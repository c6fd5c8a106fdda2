#include "support/Text.h"

#include <simdjson.h>
#include <unicode/bytestream.h>
#include <unicode/casemap.h>
#include <unicode/locid.h>
#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <cstdint>

namespace fernwick::support {
namespace {

// The macros of ICU are full of C's casts, which only some compilers forgive a system header.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wold-style-cast"
#pragma GCC diagnostic ignored "-Wconversion"

// The code point that starts at `at`, which moves behind it; negative for bytes that are no UTF-8.
UChar32 nextCodePoint(std::string_view text, std::size_t& at) {
    const auto length = static_cast<std::int32_t>(text.size());
    auto index = static_cast<std::int32_t>(at);
    UChar32 point = 0;
    U8_NEXT(text.data(), index, length, point); // NOLINT(bugprone-inc-dec-in-conditions): in the macro
    at = static_cast<std::size_t>(index);
    return point;
}

// The code point that ends before `at`, which moves to its start; negative for bytes that are no UTF-8.
UChar32 previousCodePoint(std::string_view text, std::size_t& at) {
    auto index = static_cast<std::int32_t>(at);
    UChar32 point = 0;
    U8_PREV(text.data(), 0, index, point);
    at = static_cast<std::size_t>(index);
    return point;
}

#pragma GCC diagnostic pop

bool isBlank(UChar32 point) {
    return point >= 0 && u_isblank(point) != 0;
}

bool isGraphicAscii(char c) {
    return c > ' ' && c <= '~';
}

bool isAscii(std::string_view text) {
    return std::ranges::all_of(text, [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

// Folds text that is pure ASCII. In the Turkic languages the capital of the dotless i is the plain I.
std::string foldedAscii(std::string_view text, bool turkic) {
    constexpr std::string_view kDotlessI = "\u0131";
    std::string folded;
    folded.reserve(text.size());
    for (const char c : text) {
        if (c == 'I' && turkic) {
            folded += kDotlessI;
        } else {
            folded += c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
        }
    }
    return folded;
}

std::string composed(std::string_view text, UErrorCode& status) {
    std::string result;
    icu::StringByteSink<std::string> sink(&result);
    const auto* const composer = icu::Normalizer2::getNFCInstance(status);
    if (U_SUCCESS(status)) {
        composer->normalizeUTF8(0, {text.data(), static_cast<std::int32_t>(text.size())}, sink, nullptr,
                                status);
    }
    return result;
}

// Composes before folding, since a decomposed Turkic capital would lose its dot otherwise, and after it, since
// some characters fold to decomposed ones.
std::string folded(std::string_view text, bool turkic) {
    if (isAscii(text)) {
        return foldedAscii(text, turkic);
    }
    UErrorCode status = U_ZERO_ERROR;
    const std::string source = composed(text, status);
    std::string caseless;
    icu::StringByteSink<std::string> sink(&caseless);
    icu::CaseMap::utf8Fold(turkic ? U_FOLD_CASE_EXCLUDE_SPECIAL_I : U_FOLD_CASE_DEFAULT, source, sink, nullptr,
                           status);
    std::string result = composed(caseless, status);
    return U_SUCCESS(status) ? result : std::string(text);
}

// Whether the character that ends before `end` goes on there, with an accent that has no composed form.
bool isInsideCharacter(std::string_view text, std::size_t end) {
    return end < text.size() && static_cast<unsigned char>(text[end]) >= 0x80 &&
           u_getCombiningClass(nextCodePoint(text, end)) != 0;
}

} // namespace

std::string_view trimBlanks(std::string_view text) {
    if (!text.empty() && isGraphicAscii(text.front()) && isGraphicAscii(text.back())) {
        return text; // as most texts are
    }
    std::size_t begin = 0;
    for (std::size_t next = 0; next < text.size() && isBlank(nextCodePoint(text, next));) {
        begin = next;
    }
    text.remove_prefix(begin);
    std::size_t end = text.size();
    for (std::size_t next = end; next > 0 && isBlank(previousCodePoint(text, next));) {
        end = next;
    }
    return text.substr(0, end);
}

bool isWhiteSpace(std::string_view text) {
    for (std::size_t at = 0; at < text.size();) {
        const auto point = nextCodePoint(text, at);
        if (point < 0 || u_isUWhiteSpace(point) == 0) {
            return false;
        }
    }
    return true;
}

bool startsWithNumber(std::string_view text) {
    if (text.empty()) {
        return false;
    }
    if (static_cast<unsigned char>(text.front()) < 0x80) {
        return text.front() >= '0' && text.front() <= '9';
    }
    std::size_t at = 0;
    const auto point = nextCodePoint(text, at);
    return point >= 0 && u_getIntPropertyValue(point, UCHAR_NUMERIC_TYPE) != U_NT_NONE;
}

bool isValidUtf8(std::string_view bytes) {
    return simdjson::validate_utf8(bytes.data(), bytes.size());
}

CaselessNeedle::CaselessNeedle(std::string_view needle) {
    const std::string_view language = icu::Locale::getDefault().getLanguage();
    turkic_ = language == "tr" || language == "az";
    folded_ = folded(needle, turkic_);
}

bool CaselessNeedle::isIn(std::string_view haystack) const {
    if (folded_.empty()) {
        return true;
    }
    const std::string text = folded(haystack, turkic_);
    for (auto at = text.find(folded_); at != std::string::npos; at = text.find(folded_, at + 1)) {
        if (!isInsideCharacter(text, at + folded_.size())) {
            return true;
        }
    }
    return false;
}

} // namespace fernwick::support
