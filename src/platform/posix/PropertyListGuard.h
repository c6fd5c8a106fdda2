// A look at a property list before libplist reads it. libplist follows nesting and shared objects by recursion
// and copies each shared object anew, so a small hostile file could exhaust the stack or the memory. Threads:
// any.
#pragma once

#include <cstddef>
#include <string_view>

namespace fernwick::platform {

// Far beyond what preferences hold.
inline constexpr std::size_t kDeepestPropertyList = 64;
inline constexpr std::size_t kLargestPropertyList = 256UL * 1024 * 1024; // bytes in memory, by a rough estimate

// Whether the bytes, binary or XML, stay within both bounds when they are read. Binary ones are also checked to
// be whole: the trailer, the offset table and every object that the root leads to lie within the bytes.
[[nodiscard]] bool isSafePropertyList(std::string_view bytes);

} // namespace fernwick::platform
