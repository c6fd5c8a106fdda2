// A value of the user defaults: what a property list can hold.
#pragma once

#include "support/Date.h"

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <variant>
#include <vector>

namespace fernwick::platform {

// Bytes that are shared, not copied: a stored list can be megabytes, and is handed to the thread that writes
// it.
class Data {
public:
    Data() : bytes_(std::make_shared<const std::string>()) {}
    explicit Data(std::string bytes) : bytes_(std::make_shared<const std::string>(std::move(bytes))) {}

    [[nodiscard]] const std::string& bytes() const { return *bytes_; }
    bool operator==(const Data& other) const { return bytes_ == other.bytes_ || *bytes_ == *other.bytes_; }

private:
    std::shared_ptr<const std::string> bytes_; // never null
};

struct PropertyValue;
using PropertyArray = std::vector<PropertyValue>;
using PropertyDictionary = std::map<std::string, PropertyValue, std::less<>>;

struct PropertyValue {
    std::variant<bool, std::int64_t, double, std::string, Data, support::Date, PropertyArray,
                 PropertyDictionary>
        value;

    bool operator==(const PropertyValue&) const = default;

    // The value as that type, or null when it is of another.
    template <class T>
    [[nodiscard]] const T* as() const {
        return std::get_if<T>(&value);
    }
};

} // namespace fernwick::platform
