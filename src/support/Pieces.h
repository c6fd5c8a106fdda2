// Text split at a separator, with empty pieces left out. The pieces lie in the text that was given.
// Threads: any.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <vector>

namespace fernwick::support {

// Calls `use` with each piece, in order, until it returns false. Returns whether it never did.
template <class Use>
bool forEachPiece(std::string_view text, char separator, Use use) {
    for (std::size_t at = 0; at < text.size();) {
        const auto end = std::min(text.find(separator, at), text.size());
        if (end > at && !use(text.substr(at, end - at))) {
            return false;
        }
        at = end + 1;
    }
    return true;
}

[[nodiscard]] inline std::vector<std::string_view> piecesOf(std::string_view text, char separator) {
    std::vector<std::string_view> pieces;
    forEachPiece(text, separator, [&](std::string_view piece) {
        pieces.push_back(piece);
        return true;
    });
    return pieces;
}

} // namespace fernwick::support
