// A hash over all fields of a record: equal records have equal hashes. An enumeration is hashed by its raw
// text. Threads: any.
#pragma once

#include "support/Date.h"
#include "support/Record.h"
#include "support/Uuid.h"

#include <concepts>
#include <cstdint>
#include <functional>
#include <string_view>
#include <tuple>

namespace fernwick::support {

template <Record R>
[[nodiscard]] std::size_t hashOf(const R& record);

namespace detail {

// Unlike a sum, depends on the order; the multiplication spreads small differences over all bits.
constexpr std::size_t combineHashes(std::size_t seed, std::size_t next) {
    constexpr std::uint64_t kOddConstant = 0x9E3779B97F4A7C15U; // 2^64 divided by the golden ratio
    const std::uint64_t mixed = (std::uint64_t{seed} ^ next) * kOddConstant;
    return static_cast<std::size_t>(mixed ^ (mixed >> 29U));
}

template <class T>
[[nodiscard]] std::size_t hashOfValue(const T& value) {
    if constexpr (Record<T>) {
        return hashOf(value);
    } else if constexpr (RawTextEnum<T>) {
        return std::hash<std::string_view>{}(toRawText(value));
    } else if constexpr (std::same_as<T, Date>) {
        return std::hash<double>{}(value.secondsSinceReference);
    } else if constexpr (requires { value.has_value(); }) {
        return value ? combineHashes(1, hashOfValue(*value)) : 0;
    } else if constexpr (requires { std::hash<T>{}(value); }) {
        return std::hash<T>{}(value);
    } else {
        std::size_t seed = value.size();
        for (const auto& element : value) {
            seed = combineHashes(seed, hashOfValue(element));
        }
        return seed;
    }
}

} // namespace detail

template <Record R>
std::size_t hashOf(const R& record) {
    return std::apply(
        [&](const auto&... fields) {
            std::size_t seed = sizeof...(fields);
            ((seed = detail::combineHashes(seed, detail::hashOfValue(record.*fields.member))), ...);
            return seed;
        },
        R::fields());
}

} // namespace fernwick::support
