#include "updating/UrlText.h"

#include "support/Text.h"

#include <algorithm>
#include <cstddef>
#include <optional>

namespace fernwick {

namespace {

constexpr std::string_view kDefaultArchive = "Fernwick_Update.zip";

bool isLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

std::optional<int> hexValue(char c) {
    if (isDigit(c)) {
        return c - '0';
    }
    if (c >= 'a' && c <= 'f') {
        return c - 'a' + 10;
    }
    if (c >= 'A' && c <= 'F') {
        return c - 'A' + 10;
    }
    return std::nullopt;
}

// The byte of the percent form that begins at that place, if one does.
std::optional<char> decodedAt(std::string_view text, std::size_t at) {
    if (text[at] != '%' || text.size() - at < 3) {
        return std::nullopt;
    }
    const auto high = hexValue(text[at + 1]);
    const auto low = hexValue(text[at + 2]);
    return high && low ? std::optional(static_cast<char>((*high << 4) | *low)) : std::nullopt;
}

// Whether all is made of percent forms, unreserved characters, sub-delims and those of `also` (RFC 3986,
// section 2).
bool isMadeOf(std::string_view text, std::string_view also) {
    for (std::size_t at = 0; at < text.size(); ++at) {
        const char c = text[at];
        if (decodedAt(text, at)) {
            at += 2;
        } else if (!isLetter(c) && !isDigit(c) && !std::string_view("-._~!$&'()*+,;=").contains(c) &&
                   !also.contains(c)) {
            return false;
        }
    }
    return true;
}

// The parts of a URI reference (RFC 3986, appendix B); without checking any.
struct Parts {
    std::optional<std::string_view> scheme;
    std::optional<std::string_view> authority;
    std::string_view path;
    std::string_view query;
    std::string_view fragment;
};

// Cuts what begins at the mark off the text, and returns it without the mark.
std::string_view cutOff(std::string_view& text, char mark) {
    const auto at = std::min(text.find(mark), text.size());
    const auto rest = text.substr(std::min(at + 1, text.size()));
    text = text.substr(0, at);
    return rest;
}

Parts partsOf(std::string_view text) {
    Parts parts;
    parts.fragment = cutOff(text, '#');
    parts.query = cutOff(text, '?');
    if (const auto colon = text.find(':'); colon != std::string_view::npos && colon < text.find('/')) {
        parts.scheme = text.substr(0, colon);
        text.remove_prefix(colon + 1);
    }
    if (text.starts_with("//")) {
        text.remove_prefix(2);
        const auto end = std::min(text.find('/'), text.size());
        parts.authority = text.substr(0, end);
        text.remove_prefix(end);
    }
    parts.path = text;
    return parts;
}

bool isScheme(std::string_view text) {
    return !text.empty() && isLetter(text.front()) && std::ranges::all_of(text, [](char c) {
        return isLetter(c) || isDigit(c) || c == '+' || c == '-' || c == '.';
    });
}

bool isAuthority(std::string_view text) {
    if (const auto at = text.rfind('@'); at != std::string_view::npos) {
        if (!isMadeOf(text.substr(0, at), ":")) {
            return false;
        }
        text.remove_prefix(at + 1);
    }
    bool hostFits = true;
    if (text.starts_with('[')) {
        const auto end = text.find(']');
        hostFits = end != std::string_view::npos && end > 1 && isMadeOf(text.substr(1, end - 1), ":");
        text.remove_prefix(std::min(end, text.size() - 1) + 1);
        hostFits = hostFits && (text.empty() || text.starts_with(':'));
        text.remove_prefix(text.empty() ? 0 : 1);
    } else {
        const auto port = cutOff(text, ':');
        hostFits = isMadeOf(text, "");
        text = port;
    }
    return hostFits && std::ranges::all_of(text, isDigit);
}

std::string decoded(std::string_view text) {
    std::string result;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const auto byte = decodedAt(text, at);
        result += byte.value_or(text[at]);
        at += byte ? 2 : 0;
    }
    return result;
}

} // namespace

bool isValidUrl(std::string_view text) {
    const auto parts = partsOf(text);
    return !text.empty() && (!parts.scheme || isScheme(*parts.scheme)) &&
           (!parts.authority || isAuthority(*parts.authority)) && isMadeOf(parts.path, ":@/") &&
           isMadeOf(parts.query, ":@/?") && isMadeOf(parts.fragment, ":@/?");
}

std::string lastPathComponent(std::string_view url) {
    auto path = partsOf(url).path;
    const auto end = path.find_last_not_of('/');
    if (end == std::string_view::npos) {
        return path.empty() ? "" : "/";
    }
    path = path.substr(0, end + 1);
    return decoded(path.substr(path.rfind('/') + 1));
}

std::string archiveName(std::string_view url) {
    auto name = lastPathComponent(url);
    const bool isName = !name.empty() && name != "." && name != ".." && !name.contains('/') &&
                        !name.contains('\0') && support::isValidUtf8(name);
    return isName ? name : std::string(kDefaultArchive);
}

} // namespace fernwick
