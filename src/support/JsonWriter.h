// Compact JSON text, built value by value. What the record coding writes with; it knows nothing of records.
// Threads: any, one at a time.
#pragma once

#include "support/Date.h"
#include "support/Uuid.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <string>
#include <string_view>
#include <utility>

namespace fernwick::support {

// Why a value has no JSON form, and where it stands, e.g. "[3].notes".
struct EncodeError {
    std::string path;
    std::string message;
};

// Every write returns whether the value has a JSON form. The first that has none is kept as the error; callers
// stop there, and name the place from the inside out with `failedIn`.
class JsonWriter {
public:
    // Text that is JSON already, such as punctuation and keys.
    void raw(std::span<const char> json) {
        std::memcpy(room(json.size()), json.data(), json.size());
        size_ += json.size();
    }

    // A string: quotes, backslashes and control characters are escaped, slashes are not, everything else is
    // written as it is. Fails when it is not well-formed UTF-8.
    [[nodiscard]] bool write(std::string_view text);

    // A number in the fewest digits that read back as the same double. Fails when it is infinite or not a
    // number.
    [[nodiscard]] bool write(double number);
    [[nodiscard]] bool write(Date date) { return write(date.secondsSinceReference); }

    [[nodiscard]] bool write(std::int64_t number);
    [[nodiscard]] bool write(bool value);

    // The text form, as a string.
    [[nodiscard]] bool write(const Uuid& uuid);

    // How many bytes were written.
    [[nodiscard]] std::size_t size() const { return size_; }

    // Replaces one byte that was written; `at` is less than `size()`.
    void patch(std::size_t at, char byte) { buffer_[at] = byte; }

    // Makes room for `count` values of about that many bytes, so that a long text need not be moved as it
    // grows.
    void expect(std::size_t bytes, std::size_t count);

    // Puts a place in front of the error's path; returns false.
    bool failedIn(std::string_view key);
    bool failedIn(std::size_t index);

    [[nodiscard]] EncodeError takeError() { return std::move(error_); }

    // Everything that was written. Nothing may be written afterwards.
    [[nodiscard]] std::string take() {
        buffer_.resize(size_);
        return std::move(buffer_);
    }

private:
    // Where the next bytes go; at least `bytes` of them are free.
    char* room(std::size_t bytes) {
        if (buffer_.size() - size_ < bytes) {
            grow(bytes);
        }
        return buffer_.data() + size_;
    }
    void grow(std::size_t bytes);
    bool fail(std::string_view message);

    std::string buffer_; // its first `size_` bytes are written, the others are room
    std::size_t size_ = 0;
    EncodeError error_;
};

} // namespace fernwick::support
