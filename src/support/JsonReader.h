// JSON text, checked whole, and its values handed to records. What the record coding reads with.
// Threads: any, one at a time.
#pragma once

#include "support/Date.h"
#include "support/Uuid.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>

namespace fernwick::support {

class JsonReader;

// Why a text is not a list of records, and at which place, e.g. "[3].notes". The path is empty when the text is
// no JSON at all.
struct DecodeError {
    std::string path;
    std::string message;
};

// One value of a parsed text; valid until its reader comes to the next element of the text. Null by default.
class JsonValue {
public:
    JsonValue() = default;
    explicit JsonValue(std::array<std::uint64_t, 2> place) : place_(place) {}

    [[nodiscard]] bool isNull() const;

    // The value, or nothing when it is of another type. A number with no fraction is an integer however it is
    // written.
    [[nodiscard]] std::optional<std::string_view> text() const;
    [[nodiscard]] std::optional<bool> boolean() const;
    [[nodiscard]] std::optional<std::int64_t> integer() const;
    [[nodiscard]] std::optional<double> number() const;

private:
    friend class JsonReader;

    std::array<std::uint64_t, 2> place_{}; // in the parser's document; the header of the parser is a heavy one
};

// How one field of a record is read.
struct FieldReader {
    std::string_view key;
    bool required;
    // Reads into the field of that record; is given a null value when an optional key is missing.
    bool (*read)(JsonReader& reader, const JsonValue& value, void* record);
};

// Appends a value to the list of some element type, or reads the one value of a text; returns whether it fits.
using ElementReader = bool (*)(JsonReader& reader, const JsonValue& value, void* list);

// Reads the value of that name into the map of some element type; returns whether it fits.
using MemberReader = bool (*)(JsonReader& reader, std::string_view name, const JsonValue& value, void* map);

// Reading returns whether the value fits. The first that does not is kept as the error; callers stop there.
class JsonReader {
public:
    static constexpr std::size_t kMaxFields = 64;

    JsonReader();
    JsonReader(const JsonReader&) = delete;
    JsonReader& operator=(const JsonReader&) = delete;
    ~JsonReader();

    // Reads a text that must be one JSON array (RFC 8259) in valid UTF-8 with nothing behind it, element by
    // element into a list. All of it is checked, keys that nobody asks for included; fails on lone surrogates,
    // on numbers beyond a double or, without fraction and exponent, beyond 64 bits, and on nesting deeper than
    // 1,024 in an element.
    [[nodiscard]] bool readText(std::string_view json, ElementReader readElement, void* list);

    // The same for a text that must be one JSON value of any kind.
    [[nodiscard]] bool readDocument(std::string_view json, ElementReader readValue, void* out);

    [[nodiscard]] bool read(const JsonValue& value, std::string& out);
    [[nodiscard]] bool read(const JsonValue& value, bool& out);
    [[nodiscard]] bool read(const JsonValue& value, std::int64_t& out);
    [[nodiscard]] bool read(const JsonValue& value, int& out);
    [[nodiscard]] bool read(const JsonValue& value, double& out);
    [[nodiscard]] bool read(const JsonValue& value, Date& out);
    [[nodiscard]] bool read(const JsonValue& value, Uuid& out);

    // Reads an object into a record. Of a key that is there twice, the last value stands, but all must fit.
    [[nodiscard]] bool readObject(const JsonValue& value, std::span<const FieldReader> fields, void* record);

    // Reads an array element by element into a list, up to the first that does not fit.
    [[nodiscard]] bool readElements(const JsonValue& value, ElementReader readElement, void* list);

    // Reads an object whose names are not known beforehand, member by member; a name may be there twice.
    [[nodiscard]] bool readMembers(const JsonValue& value, MemberReader readMember, void* map);

    // Keeps why a value does not fit; returns false.
    bool fail(std::string_view message);

    [[nodiscard]] DecodeError takeError() { return std::move(error_); }

private:
    struct Parser;

    // The value of an element's text; `readable` bytes may be read from its start.
    [[nodiscard]] std::optional<JsonValue> parse(std::string_view element, std::size_t readable);
    bool failedIn(const std::string& place);

    std::unique_ptr<Parser> parser_;
    DecodeError error_;
};

} // namespace fernwick::support
