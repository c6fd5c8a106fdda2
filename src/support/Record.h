// The one table of a record's fields, from which coding, hashing and equality tests are generated.
//
// A record is a plain struct with a static `fields()` that lists its members in the order of its JSON keys:
//
//     struct TunnelTag {
//         support::Uuid id;
//         std::string name;
//         bool operator==(const TunnelTag&) const = default;
//         static constexpr auto fields() {
//             return std::tuple{support::field("id", &TunnelTag::id), support::field("name",
//             &TunnelTag::name)};
//         }
//     };
//
// An enumeration that is stored as text has, in its own namespace, an overload of `rawTexts` that lists its
// cases in the order in which they are offered:
//
//     constexpr auto rawTexts(AuthMethod) {
//         return std::array{support::rawText(AuthMethod::password, "Password"), ...};
//     }
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string_view>
#include <tuple>
#include <vector>

namespace fernwick::support {

template <class Owner, class Value>
struct Field {
    std::string_view name;
    Value Owner::* member;
};

template <class Owner, class Value>
constexpr Field<Owner, Value> field(std::string_view name, Value Owner::* member) {
    return {name, member};
}

template <class Enum>
struct RawText {
    Enum value;
    std::string_view text;
};

template <class Enum>
constexpr RawText<Enum> rawText(Enum value, std::string_view text) {
    return {value, text};
}

template <class T>
concept RawTextEnum = std::is_enum_v<T> && requires(T value) { rawTexts(value); };

template <class T>
concept Record = requires { T::fields(); };

// The raw text of a case; every case has one.
template <RawTextEnum Enum>
constexpr std::string_view toRawText(Enum value) {
    for (const auto& entry : rawTexts(value)) {
        if (entry.value == value) {
            return entry.text;
        }
    }
    return {};
}

// The case with exactly that raw text, letter case included.
template <RawTextEnum Enum>
constexpr std::optional<Enum> fromRawText(std::string_view text) {
    for (const auto& entry : rawTexts(Enum{})) {
        if (entry.text == text) {
            return entry.value;
        }
    }
    return std::nullopt;
}

} // namespace fernwick::support
