#include "routing/PACConditions.h"

#include "routing/RuleElements.h"
#include "routing/TextLines.h"
#include "support/Integer.h"
#include "support/Pieces.h"
#include "support/Text.h"

#include <fmt/format.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <optional>
#include <string_view>

namespace fernwick {

namespace {

// Appends expressions, with what joins them before each but the first.
class Alternatives {
public:
    explicit Alternatives(std::string& text) : text_(text), start_(text.size()) {}

    template <class... Piece>
    void add(const Piece&... pieces) {
        if (text_.size() == start_) {
            appendPieces(text_, pieces...);
        } else {
            appendPieces(text_, "\n    || ", pieces...);
        }
    }

private:
    std::string& text_;
    std::size_t start_;
};

struct TwoPieces {
    std::string_view first;
    std::string_view second;
};

// The pieces, if there are exactly two.
std::optional<TwoPieces> twoPieces(std::string_view text, char separator) {
    TwoPieces pieces;
    std::size_t count = 0;
    support::forEachPiece(text, separator, [&](std::string_view piece) {
        (count == 0 ? pieces.first : pieces.second) = piece;
        return ++count <= 2;
    });
    return count == 2 ? std::optional(pieces) : std::nullopt;
}

// Compares addresses as numbers. Nothing looks whether the ends are addresses: a domain with one hyphen comes
// here too, and matches nothing.
void addRange(Alternatives& condition, std::string_view first, std::string_view last) {
    condition.add("(function(){\n"
                  "  var ip=dnsResolve(host)||host;\n"
                  "  var s=\"",
                  first, "\".split(\".\"),e=\"", last,
                  "\".split(\".\"),h=ip.split(\".\");\n"
                  "  if(h.length!==4)return false;\n"
                  "  var hi=h[0]*16777216+h[1]*65536+h[2]*256+h[3]*1;\n"
                  "  var si=s[0]*16777216+s[1]*65536+s[2]*256+s[3]*1;\n"
                  "  var ei=e[0]*16777216+e[1]*65536+e[2]*256+e[3]*1;\n"
                  "  return hi>=si&&hi<=ei;\n"
                  "})()");
}

// The address masks in dotted form, by how many bits are set from the top.
using Masks = std::array<std::string, 33>;

Masks allMasks() {
    Masks masks;
    for (std::size_t prefix = 0; prefix < masks.size(); ++prefix) {
        const auto mask = static_cast<std::uint32_t>(~std::uint64_t{0} << (32 - prefix));
        masks.at(prefix) =
            fmt::format("{}.{}.{}.{}", mask >> 24U, mask >> 16U & 255U, mask >> 8U & 255U, mask & 255U);
    }
    return masks;
}

void addNetwork(Alternatives& condition, std::string_view network) {
    const auto parts = twoPieces(network, '/');
    const auto prefix = parts ? support::parseInteger<std::int64_t>(parts->second) : std::nullopt;
    static const Masks masks = allMasks();
    if (prefix && *prefix >= 0 && *prefix < std::ssize(masks)) {
        condition.add("isInNet(dnsResolve(host)||host, \"", parts->first, "\", \"",
                      masks.at(static_cast<std::size_t>(*prefix)), "\")");
    }
}

// An asterisk stands for anything; what else has a meaning in a regular expression loses it. Which characters
// these are is the list that NSRegularExpression documents for `escapedPatternForString:`.
std::string patternOf(std::string_view host) {
    constexpr std::string_view kSpecial = "*?+[(){}^$|\\./";
    std::string pattern;
    for (const char c : host) {
        if (c == '*') {
            pattern += ".*";
            continue;
        }
        if (kSpecial.contains(c)) {
            pattern += '\\';
        }
        pattern += c;
    }
    return pattern;
}

// A range, a network, a domain with its subdomains, a pattern, or a host as it stands.
void addHost(Alternatives& condition, std::string_view host) {
    const HostMarks has(host);
    if (has.hyphen) {
        if (const auto ends = twoPieces(host, '-')) {
            addRange(condition, support::trimBlanks(ends->first), support::trimBlanks(ends->second));
            return;
        }
    }
    if (has.slash) {
        addNetwork(condition, host);
    } else if (host.starts_with("*.")) {
        const auto rest = host.substr(2);
        condition.add("(dnsDomainIs(host, \".", rest, "\") || host === \"", rest, "\")");
    } else if (has.asterisk) {
        condition.add("(/^", patternOf(host), "$/i.test(host))");
    } else {
        condition.add("(host === \"", host, "\")");
    }
}

std::string_view textOf(const fmt::format_int& number) {
    return {number.data(), number.size()};
}

// The numbers of the pieces between hyphens. Other pieces are passed over, and exactly two must remain.
void addPortRange(Alternatives& condition, std::string_view range) {
    std::array<std::int64_t, 2> numbers{};
    std::size_t count = 0;
    support::forEachPiece(range, '-', [&](std::string_view piece) {
        if (const auto number = support::parseInteger<std::int64_t>(piece)) {
            if (count < numbers.size()) {
                numbers.at(count) = *number;
            }
            ++count;
        }
        return true;
    });
    if (count == numbers.size()) {
        condition.add("(function(){ var m=url.match(/:(\\d+)/); if(!m)return false; "
                      "var p=parseInt(m[1]); return p>=",
                      textOf(fmt::format_int(numbers[0])), "&&p<=", textOf(fmt::format_int(numbers[1])),
                      "; })()");
    }
}

void addPort(Alternatives& condition, std::string_view port) {
    if (port.contains('-')) {
        addPortRange(condition, port);
    } else if (const auto number = support::parseInteger<std::int64_t>(port)) {
        condition.add("(url.match(/:", textOf(fmt::format_int(*number)), "([\\/\\?]|$)/) !== null)");
    }
}

} // namespace

void appendCondition(std::string& text, const AppRule& rule) {
    Alternatives condition(text);
    forEachElement(rule.targetHosts, [&](std::string_view host) { addHost(condition, host); });
    forEachElement(rule.targetPorts, [&](std::string_view port) { addPort(condition, port); });
}

} // namespace fernwick
