// Records to JSON: compact, keys in the order of the record's table, an absent optional leaves its key out.
// A UUID is written in upper case, a date as seconds since 2001-01-01T00:00:00Z, an enumeration as its raw
// text. Threads: any.
#pragma once

#include "support/JsonWriter.h"
#include "support/Record.h"

#include <algorithm>
#include <array>
#include <concepts>
#include <cstdint>
#include <expected>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

namespace fernwick::support {

namespace detail {

// The text in front of a field's value, e.g. `,"name":`; made by the compiler.
template <Record R, std::size_t I>
inline constexpr auto kKeyText = [] {
    constexpr std::string_view kName = std::get<I>(R::fields()).name;
    static_assert(
        std::ranges::all_of(kName, [](char c) { return c >= ' ' && c <= '~' && c != '"' && c != '\\'; }),
        "a key that would need escaping");
    std::array<char, kName.size() + 4> text{',', '"'};
    std::ranges::copy(kName, text.begin() + 2);
    text[text.size() - 2] = '"';
    text[text.size() - 1] = ':';
    return text;
}();

template <class T>
[[nodiscard]] bool writeValue(JsonWriter& out, const T& value);

template <Record R, std::size_t I>
[[nodiscard]] bool writeField(JsonWriter& out, const R& record) {
    static constexpr auto kField = std::get<I>(R::fields());
    const auto& value = record.*kField.member;
    if constexpr (requires { value.has_value(); }) {
        if (!value) {
            return true;
        }
        out.raw(kKeyText<R, I>);
        return writeValue(out, *value) || out.failedIn(kField.name);
    } else {
        out.raw(kKeyText<R, I>);
        return writeValue(out, value) || out.failedIn(kField.name);
    }
}

// After so many elements of a list, the others are expected to be as long.
inline constexpr std::size_t kSampledElements = 16;

// Every member is written with a comma in front of it; the first of these commas is the bracket's place.
inline void closeBracket(JsonWriter& out, std::size_t start, std::string_view brackets) {
    if (out.size() == start) {
        out.raw(brackets);
        return;
    }
    out.patch(start, brackets.front());
    out.raw(brackets.substr(1));
}

template <Record R>
[[nodiscard]] bool writeRecord(JsonWriter& out, const R& record) {
    const std::size_t start = out.size();
    const bool written = [&]<std::size_t... I>(std::index_sequence<I...>) {
        return (writeField<R, I>(out, record) && ...);
    }(std::make_index_sequence<std::tuple_size_v<decltype(R::fields())>>{});
    closeBracket(out, start, "{}");
    return written;
}

template <class T>
[[nodiscard]] bool writeElements(JsonWriter& out, const std::vector<T>& elements) {
    const std::size_t start = out.size();
    for (std::size_t index = 0; index < elements.size(); ++index) {
        if (index == kSampledElements) {
            out.expect((out.size() - start) / kSampledElements, elements.size() - index);
        }
        out.raw(std::string_view(","));
        if (!writeValue(out, elements[index])) {
            return out.failedIn(index);
        }
    }
    closeBracket(out, start, "[]");
    return true;
}

template <class T>
bool writeValue(JsonWriter& out, const T& value) {
    if constexpr (Record<T>) {
        return writeRecord(out, value);
    } else if constexpr (RawTextEnum<T>) {
        return out.write(toRawText(value));
    } else if constexpr (std::same_as<T, int>) {
        return out.write(std::int64_t{value});
    } else if constexpr (requires { out.write(value); }) {
        return out.write(value);
    } else {
        return writeElements(out, value);
    }
}

} // namespace detail

// The list as a JSON array. Fails when a string is not well-formed UTF-8 or a number is not finite.
template <Record R>
[[nodiscard]] std::expected<std::string, EncodeError> encodeList(const std::vector<R>& list) {
    JsonWriter out;
    if (!detail::writeElements(out, list)) {
        return std::unexpected(out.takeError());
    }
    return out.take();
}

} // namespace fernwick::support
