// JSON to records, strictly: a missing key, a value of another type, an unknown raw text or a malformed UUID in
// one record fails the whole list. Unknown keys are ignored; null stands for an absent optional. An object of
// any names is read into a map, in which the last value of a name stands. Threads: any.
#pragma once

#include "support/JsonReader.h"
#include "support/Record.h"

#include <array>
#include <expected>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

namespace fernwick::support {

namespace detail {

template <class T>
inline constexpr bool kIsOptional = false;
template <class T>
inline constexpr bool kIsOptional<std::optional<T>> = true;

template <class T>
using TextMap = std::map<std::string, T, std::less<>>;
template <class T>
inline constexpr bool kIsTextMap = false;
template <class T>
inline constexpr bool kIsTextMap<TextMap<T>> = true;

template <class T>
[[nodiscard]] bool readValue(JsonReader& reader, const JsonValue& value, T& out);

template <Record R, std::size_t I>
[[nodiscard]] bool readField(JsonReader& reader, const JsonValue& value, void* record) {
    static constexpr auto kField = std::get<I>(R::fields());
    return readValue(reader, value, static_cast<R*>(record)->*kField.member);
}

template <Record R>
inline constexpr auto kFieldReaders = []<std::size_t... I>(std::index_sequence<I...>) {
    static_assert(sizeof...(I) <= JsonReader::kMaxFields);
    return std::array<FieldReader, sizeof...(I)>{FieldReader{
        std::get<I>(R::fields()).name,
        !kIsOptional<std::remove_cvref_t<decltype(std::declval<R&>().*(std::get<I>(R::fields()).member))>>,
        &readField<R, I>}...};
}(std::make_index_sequence<std::tuple_size_v<decltype(R::fields())>>{});

template <class T>
[[nodiscard]] bool readElement(JsonReader& reader, const JsonValue& value, void* list) {
    return readValue(reader, value, static_cast<std::vector<T>*>(list)->emplace_back());
}

template <class T>
[[nodiscard]] bool readElements(JsonReader& reader, const JsonValue& value, std::vector<T>& out) {
    out.clear();
    return reader.readElements(value, &readElement<T>, &out);
}

template <class T>
[[nodiscard]] bool readMember(JsonReader& reader, std::string_view name, const JsonValue& value, void* map) {
    return readValue(reader, value, (*static_cast<TextMap<T>*>(map))[std::string(name)]);
}

template <class T>
[[nodiscard]] bool readMembers(JsonReader& reader, const JsonValue& value, TextMap<T>& out) {
    out.clear();
    return reader.readMembers(value, &readMember<T>, &out);
}

template <Record R>
[[nodiscard]] bool readWhole(JsonReader& reader, const JsonValue& value, void* record) {
    return readValue(reader, value, *static_cast<R*>(record));
}

template <RawTextEnum Enum>
[[nodiscard]] bool readRawText(JsonReader& reader, const JsonValue& value, Enum& out) {
    const auto text = value.text();
    const auto found = text ? fromRawText<Enum>(*text) : std::nullopt;
    out = found.value_or(out);
    return found || reader.fail("is no known raw text");
}

template <class T>
[[nodiscard]] bool readOptional(JsonReader& reader, const JsonValue& value, std::optional<T>& out) {
    if (value.isNull()) {
        out.reset();
        return true;
    }
    return readValue(reader, value, out.emplace());
}

template <class T>
bool readValue(JsonReader& reader, const JsonValue& value, T& out) {
    if constexpr (Record<T>) {
        return reader.readObject(value, kFieldReaders<T>, &out);
    } else if constexpr (RawTextEnum<T>) {
        return readRawText(reader, value, out);
    } else if constexpr (kIsOptional<T>) {
        return readOptional(reader, value, out);
    } else if constexpr (requires { reader.read(value, out); }) {
        return reader.read(value, out);
    } else if constexpr (kIsTextMap<T>) {
        return readMembers(reader, value, out);
    } else {
        return readElements(reader, value, out);
    }
}

} // namespace detail

// The records of a JSON array, in its order, or why there are none.
template <Record R>
[[nodiscard]] std::expected<std::vector<R>, DecodeError> decodeList(std::string_view json) {
    JsonReader reader;
    std::vector<R> list;
    list.reserve(json.size() / sizeof(R)); // a guess that takes no more memory than the text itself
    if (!reader.readText(json, &detail::readElement<R>, &list)) {
        return std::unexpected(reader.takeError());
    }
    return list;
}

// The record that a JSON object is, or why it is none.
template <Record R>
[[nodiscard]] std::expected<R, DecodeError> decodeRecord(std::string_view json) {
    JsonReader reader;
    R record;
    if (!reader.readDocument(json, &detail::readWhole<R>, &record)) {
        return std::unexpected(reader.takeError());
    }
    return record;
}

} // namespace fernwick::support
