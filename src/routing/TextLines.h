// Lines appended to a text piece by piece, without a temporary text in between.
// Threads: any.
#pragma once

#include <concepts>
#include <cstddef>
#include <string>
#include <string_view>

namespace fernwick {

// Appends the pieces and a line feed.
template <std::convertible_to<std::string_view>... Piece>
void appendLine(std::string& text, const Piece&... pieces) {
    const std::size_t start = text.size();
    const std::size_t size = (start + ... + std::string_view(pieces).size()) + 1;
    text.resize_and_overwrite(size, [&](char* data, std::size_t) {
        char* at = data + start;
        ((at += std::string_view(pieces).copy(at, std::string_view::npos)), ...);
        *at = '\n';
        return size;
    });
}

} // namespace fernwick
