// Text appended piece by piece, without a temporary text in between.
// Threads: any.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

namespace fernwick {

namespace detail {

// The length of a literal is known to the compiler. Other pieces are looked at where they are: to copy a view
// that was made just before costs more than what it is copied for.
template <std::size_t Size>
constexpr std::size_t sizeOf(const char (& /*literal*/)[Size]) {
    return Size - 1;
}
constexpr std::size_t sizeOf(const std::string_view& piece) {
    return piece.size();
}

// Writes the piece to `out`; returns the place behind it.
template <std::size_t Size>
char* put(char* out, const char (&literal)[Size]) {
    return std::copy_n(literal, Size - 1, out);
}
inline char* put(char* out, const std::string_view& piece) {
    return std::copy_n(piece.data(), piece.size(), out);
}

} // namespace detail

// Appends the pieces. A piece is a string literal, or converts to std::string_view.
template <class... Piece>
void appendPieces(std::string& text, const Piece&... pieces) {
    const std::size_t start = text.size();
    const std::size_t size = (start + ... + detail::sizeOf(pieces));
    const auto write = [&](char* data) {
        char* at = data + start;
        ((at = detail::put(at, pieces)), ...);
        return size;
    };
    // The string takes its operation by value; one that only refers to what it needs is passed in a register.
    text.resize_and_overwrite(size, [&write](char* data, std::size_t) { return write(data); });
}

// The same, and a line feed.
template <class... Piece>
void appendLine(std::string& text, const Piece&... pieces) {
    appendPieces(text, pieces..., "\n");
}

} // namespace fernwick
