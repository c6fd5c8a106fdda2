// JSON text, parsed whole, and its values handed to records. What the record coding reads with.
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

// One value of a parsed text; valid as long as its reader. A null one by default.
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

// Reading returns whether the value fits. The first that does not is kept as the error; callers stop there.
class JsonReader {
public:
    static constexpr std::size_t kMaxFields = 64;

    JsonReader();
    JsonReader(const JsonReader&) = delete;
    JsonReader& operator=(const JsonReader&) = delete;
    ~JsonReader();

    // Parses the whole text, which must be one JSON value (RFC 8259) in valid UTF-8, and nothing behind it.
    // Fails on lone surrogates, on numbers that no double holds, and on nesting deeper than 1,024.
    [[nodiscard]] std::optional<JsonValue> parse(std::string_view json);

    [[nodiscard]] bool read(const JsonValue& value, std::string& out);
    [[nodiscard]] bool read(const JsonValue& value, bool& out);
    [[nodiscard]] bool read(const JsonValue& value, std::int64_t& out);
    [[nodiscard]] bool read(const JsonValue& value, int& out);
    [[nodiscard]] bool read(const JsonValue& value, double& out);
    [[nodiscard]] bool read(const JsonValue& value, Date& out);
    [[nodiscard]] bool read(const JsonValue& value, Uuid& out);

    // Reads an object into a record. Of a key that is there twice, the last value stands, but all must fit.
    [[nodiscard]] bool readObject(const JsonValue& value, std::span<const FieldReader> fields, void* record);

    // How many elements the array has; nothing when it is no array. Counts no further than about 16 million.
    [[nodiscard]] std::optional<std::size_t> elementCount(const JsonValue& value);

    // Reads an array element by element into a list, up to the first that does not fit.
    [[nodiscard]] bool readElements(const JsonValue& value,
                                    bool (*readElement)(JsonReader& reader, const JsonValue& value, void* list),
                                    void* list);

    // Keeps why a value does not fit; returns false.
    bool fail(std::string_view message);

    [[nodiscard]] DecodeError takeError() { return std::move(error_); }

private:
    struct Parser;

    bool failedIn(const std::string& place);

    std::unique_ptr<Parser> parser_;
    DecodeError error_;
};

} // namespace fernwick::support
