// The elements of a rule's lists, as both ways of routing read them.
// Threads: any.
#pragma once

#include "support/Text.h"

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace fernwick {

// Calls `use` with each element, trimmed of blanks, that is not empty then.
void forEachElement(const std::vector<std::string>& elements, const auto& use) {
    for (const auto& element : elements) {
        if (const auto trimmed = support::trimBlanks(element); !trimmed.empty()) {
            use(trimmed);
        }
    }
}

// What a host pattern has in it, found in one walk.
struct HostMarks {
    bool slash = false;
    bool hyphen = false;
    bool asterisk = false;
    bool letter = false; // anything that no number has

    explicit HostMarks(std::string_view host) {
        unsigned all = 0;
        for (const char c : host) {
            all |= kClasses[static_cast<unsigned char>(c)];
        }
        slash = (all & kSlash) != 0;
        hyphen = (all & kHyphen) != 0;
        asterisk = (all & kAsterisk) != 0;
        letter = (all & kLetter) != 0;
    }

private:
    enum Class : std::uint8_t { kSlash = 1, kHyphen = 2, kAsterisk = 4, kLetter = 8 };

    static constexpr auto kClasses = [] {
        std::array<std::uint8_t, 256> classes{};
        classes.fill(kLetter);
        for (const char c : std::string_view("0123456789.+")) {
            classes[static_cast<unsigned char>(c)] = 0;
        }
        classes['-'] = kHyphen;
        classes['/'] |= kSlash;
        classes['*'] |= kAsterisk;
        return classes;
    }();
};

} // namespace fernwick
