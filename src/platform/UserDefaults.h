// The preferences of one domain: named values that survive the application.
// Threads: main thread only; writing to disk happens elsewhere.
#pragma once

#include "platform/PropertyValue.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace fernwick::platform {

class UserDefaults {
public:
    // Waits until everything that was set is on disk.
    virtual ~UserDefaults() = default;

    // The value under the key, from memory.
    [[nodiscard]] virtual std::optional<PropertyValue> value(std::string_view key) const = 0;

    // Replaces the value in memory at once; the file follows soon after, without the caller waiting for it. A
    // write that fails is told on standard error, and tried again with the next change and at the end.
    virtual void set(std::string_view key, PropertyValue value) = 0;

    // Takes the key out; does nothing if it is not there.
    virtual void remove(std::string_view key) = 0;

    // The keys that have a value, sorted.
    [[nodiscard]] virtual std::vector<std::string> keys() const = 0;

    // Waits until everything that was set before the call is on disk, or could not be written; while the disk
    // is stuck, for as long as it is.
    virtual void synchronize() = 0;

    // The bytes under the key; absent when there is no value or it is of another type.
    [[nodiscard]] std::optional<Data> data(std::string_view key) const {
        const auto found = value(key);
        const auto* bytes = found ? found->as<Data>() : nullptr;
        return bytes != nullptr ? std::optional(*bytes) : std::nullopt;
    }
};

// Opens the application's own domains, each of which is read once, when it is opened; and reads those of
// others.
class UserDefaultsProvider {
public:
    virtual ~UserDefaultsProvider() = default;

    // A domain that has no file yet is empty. A file that cannot be read is told on standard error and set
    // aside before anything is written in its place.
    [[nodiscard]] virtual std::unique_ptr<UserDefaults> open(std::string_view domain) = 0;

    // What another application keeps in its domain; nothing is changed, made or set aside there. Empty when the
    // domain has no file; absent, and told on standard error, when its file cannot be read.
    [[nodiscard]] virtual std::optional<PropertyDictionary> read(std::string_view domain) = 0;
};

} // namespace fernwick::platform
