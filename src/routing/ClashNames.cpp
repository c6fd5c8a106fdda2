#include "routing/ClashNames.h"

#include "support/Text.h"

#include <algorithm>

namespace fernwick {

std::string sanitizeName(std::string_view text) {
    std::string name(support::trimBlanks(text));
    std::ranges::replace(name, '"', '\'');
    std::ranges::replace(name, ':', '-');
    return name;
}

std::string TakenNames::takeFree(const std::string& base) {
    if (take(base)) {
        return base;
    }
    auto& number = next_.try_emplace(base, 2).first->second;
    for (;; ++number) {
        auto candidate = base + "-" + std::to_string(number);
        if (take(candidate)) {
            return candidate;
        }
    }
}

} // namespace fernwick
