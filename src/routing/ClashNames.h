// Names as the engine's configuration holds them, and which of them are taken.
// Threads: any.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

namespace fernwick {

// The name without blanks at its ends, with "'" for each double quote and "-" for each colon.
[[nodiscard]] std::string sanitizeName(std::string_view text);

class TakenNames {
public:
    [[nodiscard]] bool contains(const std::string& name) const { return names_.contains(name); }

    // Takes the name. Returns whether it was free.
    bool take(const std::string& name) { return names_.insert(name).second; }

    // Takes the name, or the first that is free of "name-2", "name-3" and so on. Returns what it took.
    std::string takeFree(const std::string& base);

private:
    std::unordered_set<std::string> names_;
    std::unordered_map<std::string, std::uint64_t> next_; // lower numbers behind that name are taken
};

} // namespace fernwick
