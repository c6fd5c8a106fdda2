#include "platform/posix/PropertyListFile.h"

#include "platform/posix/PropertyListGuard.h"
#include "support/Text.h"

#include <plist/plist.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <memory>
#include <type_traits>

namespace fernwick::platform {

namespace {

struct FreeNode {
    void operator()(void* node) const { plist_free(node); }
};
struct FreeText {
    void operator()(char* text) const { std::free(text); } // NOLINT: libplist's documentation asks for free(3)
};
struct FreeBytes {
    void operator()(char* bytes) const { plist_to_bin_free(bytes); }
};
using Node = std::unique_ptr<void, FreeNode>;

std::optional<PropertyValue> fromNode(plist_t node);

std::optional<PropertyValue> fromArray(plist_t node) {
    PropertyArray array;
    const auto count = plist_array_get_size(node);
    array.reserve(count);
    for (std::uint32_t index = 0; index < count; ++index) {
        auto item = fromNode(plist_array_get_item(node, index));
        if (!item) {
            return std::nullopt;
        }
        array.push_back(std::move(*item));
    }
    return PropertyValue{std::move(array)};
}

std::optional<PropertyValue> fromDictionary(plist_t node) {
    PropertyDictionary dictionary;
    plist_dict_iter place = nullptr;
    plist_dict_new_iter(node, &place);
    const std::unique_ptr<void, decltype(&std::free)> placeOwner(place, &std::free);
    while (true) {
        char* key = nullptr;
        plist_t item = nullptr;
        plist_dict_next_item(node, place, &key, &item);
        const std::unique_ptr<char, FreeText> keyOwner(key);
        if (item == nullptr) {
            return PropertyValue{std::move(dictionary)};
        }
        auto value = fromNode(item);
        if (!value || key == nullptr || !support::isValidUtf8(key)) {
            return std::nullopt;
        }
        dictionary.insert_or_assign(key, std::move(*value));
    }
}

double dateOf(plist_t node) {
    std::int32_t seconds = 0;
    std::int32_t microseconds = 0;
    plist_get_date_val(node, &seconds, &microseconds);
    // libplist cuts towards zero and hands out the rest without its sign; so the one second before 2001 is
    // lost. Of a date that it cannot hold it hands out any rest.
    const double rest = std::clamp(microseconds, 0, 999'999) / 1e6;
    return seconds < 0 ? seconds - rest : seconds + rest;
}

PropertyValue fromDate(plist_t node) {
    return {support::Date{dateOf(node)}};
}

PropertyValue fromBytes(plist_t node) {
    std::uint64_t length = 0;
    const char* bytes = plist_get_data_ptr(node, &length);
    return {Data(bytes != nullptr ? std::string(bytes, length) : std::string())};
}

std::optional<PropertyValue> fromString(plist_t node) {
    std::uint64_t length = 0;
    const char* text = plist_get_string_ptr(node, &length);
    std::string string = text != nullptr ? std::string(text, length) : std::string();
    return support::isValidUtf8(string) ? std::optional(PropertyValue{std::move(string)}) : std::nullopt;
}

PropertyValue fromNumber(plist_t node) {
    if (plist_get_node_type(node) == PLIST_REAL) {
        double value = 0;
        plist_get_real_val(node, &value);
        return {value};
    }
    std::uint64_t value = 0;
    plist_get_uint_val(node, &value);
    return {static_cast<std::int64_t>(value)}; // libplist hands out negative numbers by their bits
}

std::optional<PropertyValue> fromNode(plist_t node) {
    switch (plist_get_node_type(node)) {
    case PLIST_BOOLEAN: {
        std::uint8_t value = 0;
        plist_get_bool_val(node, &value);
        return PropertyValue{value != 0};
    }
    case PLIST_UINT:
    case PLIST_REAL:
        return fromNumber(node);
    case PLIST_STRING:
        return fromString(node);
    case PLIST_DATA:
        return fromBytes(node);
    case PLIST_DATE:
        return fromDate(node);
    case PLIST_ARRAY:
        return fromArray(node);
    case PLIST_DICT:
        return fromDictionary(node);
    default:
        return std::nullopt;
    }
}

plist_t toNode(const PropertyValue& value);

// Text that libplist can convert: it trusts it to be UTF-8.
std::string sound(std::string text) {
    if (!support::isValidUtf8(text)) {
        std::erase_if(text, [](char byte) { return static_cast<unsigned char>(byte) >= 0x80; });
    }
    return text;
}

plist_t newDate(support::Date date) {
    constexpr double kLast = std::numeric_limits<std::int32_t>::max();
    const double bounded = std::isnan(date.secondsSinceReference)
                               ? 0.0
                               : std::clamp(date.secondsSinceReference, -kLast, kLast - 1);
    const auto seconds = static_cast<std::int32_t>(std::floor(bounded));
    const auto microseconds = static_cast<std::int32_t>(std::round((bounded - seconds) * 1e6));
    // Reading may cut one microsecond off what was written; without this a date would lose one with every
    // write.
    for (const std::int32_t correction : {0, 1, -1}) {
        Node node(plist_new_date(seconds, microseconds + correction));
        if (std::abs(dateOf(node.get()) - bounded) < 0.75e-6) {
            return node.release();
        }
    }
    return plist_new_date(seconds, microseconds);
}

plist_t newArray(const PropertyArray& array) {
    auto* node = plist_new_array();
    for (const auto& item : array) {
        plist_array_append_item(node, toNode(item));
    }
    return node;
}

plist_t newDictionary(const PropertyDictionary& dictionary) {
    auto* node = plist_new_dict();
    for (const auto& [key, item] : dictionary) {
        plist_dict_set_item(node, sound(key).c_str(), toNode(item));
    }
    return node;
}

plist_t toNode(const PropertyValue& value) {
    return std::visit(
        [](const auto& held) -> plist_t {
            using T = std::decay_t<decltype(held)>;
            if constexpr (std::is_same_v<T, bool>) {
                return plist_new_bool(held ? 1 : 0);
            } else if constexpr (std::is_same_v<T, std::int64_t>) {
                return plist_new_uint(static_cast<std::uint64_t>(held));
            } else if constexpr (std::is_same_v<T, double>) {
                return plist_new_real(held);
            } else if constexpr (std::is_same_v<T, std::string>) {
                return plist_new_string(sound(held).c_str());
            } else if constexpr (std::is_same_v<T, Data>) {
                return plist_new_data(held.bytes().data(), held.bytes().size());
            } else if constexpr (std::is_same_v<T, support::Date>) {
                return newDate(held);
            } else if constexpr (std::is_same_v<T, PropertyArray>) {
                return newArray(held);
            } else {
                return newDictionary(held);
            }
        },
        value.value);
}

} // namespace

std::optional<PropertyValue> parsePropertyList(std::string_view bytes) {
    if (!isSafePropertyList(bytes)) {
        return std::nullopt;
    }
    // libplist looks one byte ahead in XML, so it gets a copy that ends with a NUL.
    const std::string terminated(bytes);
    plist_t root = nullptr;
    plist_from_memory(terminated.c_str(), static_cast<std::uint32_t>(terminated.size()), &root);
    const Node owner(root);
    return root != nullptr ? fromNode(root) : std::nullopt;
}

std::string encodePropertyList(const PropertyDictionary& dictionary) {
    const Node root(newDictionary(dictionary));
    char* bytes = nullptr;
    std::uint32_t length = 0;
    plist_to_bin(root.get(), &bytes, &length);
    const std::unique_ptr<char, FreeBytes> owner(bytes);
    return bytes != nullptr ? std::string(bytes, length) : std::string();
}

} // namespace fernwick::platform
