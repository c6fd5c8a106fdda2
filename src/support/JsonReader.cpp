#include "support/JsonReader.h"

#include <simdjson.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <type_traits>
#include <utility>

namespace fernwick::support {
namespace {

namespace dom = simdjson::dom;

using Place = std::array<std::uint64_t, 2>;
static_assert(sizeof(Place) == sizeof(dom::element) && std::is_trivially_copyable_v<dom::element>);

dom::element elementAt(const Place& place) {
    return std::bit_cast<dom::element>(place);
}
JsonValue valueOf(const dom::element& element) {
    return JsonValue(std::bit_cast<Place>(element));
}

// The value of the expected type, or nothing.
template <class T>
std::optional<T> as(const Place& place) {
    T value;
    if (place == Place{} || elementAt(place).get(value) != simdjson::SUCCESS) {
        return std::nullopt;
    }
    return value;
}

// The index of the field with that key, `fields.size()` when there is none. Looks at `expected` first, since
// most texts have the keys in the order of the table.
std::size_t indexOfField(std::span<const FieldReader> fields, std::string_view key, std::size_t expected) {
    if (expected < fields.size() && fields[expected].key == key) {
        return expected;
    }
    const auto found = std::ranges::find(fields, key, &FieldReader::key);
    return static_cast<std::size_t>(found - fields.begin());
}

// Where the white space from `at` on ends.
std::size_t skipSpace(std::string_view json, std::size_t at) {
    return std::min(json.find_first_not_of(" \t\n\r", at), json.size());
}

// Where the string ends whose opening quote is at `at`: behind its closing quote, or at the end of the text.
std::size_t endOfString(std::string_view json, std::size_t at) {
    for (auto quote = json.find('"', at + 1); quote != std::string_view::npos;
         quote = json.find('"', quote + 1)) {
        const auto before = json.find_last_not_of('\\', quote - 1);
        if ((quote - before) % 2 == 1) { // an even number of backslashes: they escape each other, not the quote
            return quote + 1;
        }
    }
    return json.size();
}

// Where the array element that starts at `at` ends: at the next comma or bracket that belongs to the array
// itself. Whether the element is well-formed is left to the parser.
std::size_t endOfElement(std::string_view json, std::size_t at) {
    std::size_t depth = 0;
    while (at < json.size()) {
        switch (json[at]) {
        case '"':
            at = endOfString(json, at);
            continue;
        case '{':
        case '[':
            ++depth;
            break;
        case '}':
        case ']':
        case ',':
            if (depth == 0) {
                return at;
            }
            depth -= json[at] == ',' ? 0 : 1;
            break;
        default:
            break;
        }
        ++at;
    }
    return at;
}

// The same for an object that holds no other and no closing brace in its texts. Found much faster, and safe to
// try: what ends at any other brace is not well-formed.
std::size_t endOfFlatObject(std::string_view json, std::size_t at) {
    return std::min(json.find('}', at), json.size() - 1) + 1;
}

} // namespace

// An element at a time is parsed, not the whole text: the parser's working memory is several times the size of
// what it is given, and so stays in the processor's cache.
struct JsonReader::Parser {
    dom::parser parser;
    std::string padded;
};

bool JsonValue::isNull() const {
    return place_ == Place{} || elementAt(place_).is_null();
}

std::optional<std::string_view> JsonValue::text() const {
    return as<std::string_view>(place_);
}

std::optional<bool> JsonValue::boolean() const {
    return as<bool>(place_);
}

std::optional<std::int64_t> JsonValue::integer() const {
    if (const auto exact = as<std::int64_t>(place_)) {
        return exact;
    }
    constexpr double kLimit = 9223372036854775808.0; // 2^63, the first that is too large
    const auto real = number();
    if (!real || *real < -kLimit || *real >= kLimit || *real != std::trunc(*real)) {
        return std::nullopt;
    }
    return static_cast<std::int64_t>(*real);
}

std::optional<double> JsonValue::number() const {
    return as<double>(place_);
}

JsonReader::JsonReader() : parser_(std::make_unique<Parser>()) {}
JsonReader::~JsonReader() = default;

bool JsonReader::readText(std::string_view json, ElementReader readElement, void* list) {
    std::size_t at = skipSpace(json, 0);
    if (at == json.size() || json[at] != '[') {
        return fail("is no array");
    }
    at = skipSpace(json, at + 1);
    const bool empty = at < json.size() && json[at] == ']';
    bool flat = true;
    for (std::size_t index = 0; !empty; ++index) {
        std::size_t end = flat ? endOfFlatObject(json, at) : endOfElement(json, at);
        auto element = parse(json.substr(at, end - at), json.size() - at);
        if (!element && flat) {
            flat = false;
            end = endOfElement(json, at);
            element = parse(json.substr(at, end - at), json.size() - at);
        }
        if (!element || !readElement(*this, *element, list)) {
            return failedIn("[" + std::to_string(index) + "]");
        }
        at = skipSpace(json, end);
        if (at == json.size() || json[at] != ',') {
            break;
        }
        ++at;
    }
    if (at == json.size() || json[at] != ']') {
        return fail("does not end");
    }
    return skipSpace(json, at + 1) == json.size() || fail("goes on behind its end");
}

bool JsonReader::readDocument(std::string_view json, ElementReader readValue, void* out) {
    const auto value = parse(json, json.size());
    return value && readValue(*this, *value, out);
}

std::optional<JsonValue> JsonReader::parse(std::string_view element, std::size_t readable) {
    const char* text = element.data();
    if (readable - element.size() < simdjson::SIMDJSON_PADDING) {
        parser_->padded.assign(element).append(simdjson::SIMDJSON_PADDING, ' ');
        text = parser_->padded.data();
    }
    dom::element value;
    if (const auto error = parser_->parser.parse(text, element.size(), false).get(value);
        error != simdjson::SUCCESS) {
        fail(simdjson::error_message(error));
        return std::nullopt;
    }
    return valueOf(value);
}

bool JsonReader::read(const JsonValue& value, std::string& out) {
    const auto text = value.text();
    if (!text) {
        return fail("is no string");
    }
    out.assign(*text);
    return true;
}

bool JsonReader::read(const JsonValue& value, bool& out) {
    const auto boolean = value.boolean();
    out = boolean.value_or(false);
    return boolean || fail("is no boolean");
}

bool JsonReader::read(const JsonValue& value, std::int64_t& out) {
    const auto integer = value.integer();
    out = integer.value_or(0);
    return integer || fail("is no integer of 64 bits");
}

bool JsonReader::read(const JsonValue& value, int& out) {
    const auto integer = value.integer();
    if (!integer || !std::in_range<int>(*integer)) {
        return fail("is no integer of 32 bits");
    }
    out = static_cast<int>(*integer);
    return true;
}

bool JsonReader::read(const JsonValue& value, double& out) {
    const auto number = value.number();
    out = number.value_or(0.0);
    return number || fail("is no number");
}

bool JsonReader::read(const JsonValue& value, Date& out) {
    return read(value, out.secondsSinceReference);
}

bool JsonReader::read(const JsonValue& value, Uuid& out) {
    const auto text = value.text();
    const auto uuid = text ? Uuid::parse(*text) : std::nullopt;
    out = uuid.value_or(Uuid{});
    return uuid || fail("is no UUID");
}

bool JsonReader::readObject(const JsonValue& value, std::span<const FieldReader> fields, void* record) {
    const auto object = as<dom::object>(value.place_);
    if (!object) {
        return fail("is no object");
    }
    std::uint64_t seen = 0;
    std::size_t expected = 0;
    for (const auto& [key, element] : *object) {
        const std::size_t index = indexOfField(fields, key, expected);
        if (index == fields.size()) {
            continue;
        }
        if (!fields[index].read(*this, valueOf(element), record)) {
            return failedIn("." + std::string(key));
        }
        seen |= std::uint64_t{1} << index;
        expected = index + 1;
    }
    for (std::size_t index = 0; index < fields.size(); ++index) {
        if ((seen >> index & 1U) != 0) {
            continue;
        }
        if (fields[index].required ? !fail("is missing") : !fields[index].read(*this, {}, record)) {
            return failedIn("." + std::string(fields[index].key));
        }
    }
    return true;
}

bool JsonReader::readElements(const JsonValue& value, ElementReader readElement, void* list) {
    const auto array = as<dom::array>(value.place_);
    if (!array) {
        return fail("is no array");
    }
    std::size_t index = 0;
    for (const auto element : *array) {
        if (!readElement(*this, valueOf(element), list)) {
            return failedIn("[" + std::to_string(index) + "]");
        }
        ++index;
    }
    return true;
}

bool JsonReader::readMembers(const JsonValue& value, MemberReader readMember, void* map) {
    const auto object = as<dom::object>(value.place_);
    if (!object) {
        return fail("is no object");
    }
    for (const auto& [name, element] : *object) {
        if (!readMember(*this, name, valueOf(element), map)) {
            return failedIn("." + std::string(name));
        }
    }
    return true;
}

bool JsonReader::fail(std::string_view message) {
    error_.message = message;
    return false;
}

bool JsonReader::failedIn(const std::string& place) {
    error_.path = place + error_.path;
    return false;
}

} // namespace fernwick::support
