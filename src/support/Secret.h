// A text that must not lie around in memory: a password or a passphrase. The bytes are wiped when the last
// owner lets go of them; copies are made only on purpose, by text(). Threads: any, one at a time.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

namespace fernwick::support {

// Overwrites memory with zeros in a way that the compiler keeps.
inline void wipe(char* bytes, std::size_t size) {
    volatile char* target = bytes;
    for (std::size_t at = 0; at < size; ++at) {
        target[at] = 0;
    }
}

// The same for a string, with what it holds beyond its size; it is empty afterwards.
inline void wipe(std::string& text) {
    text.resize(text.capacity());
    wipe(text.data(), text.size());
    text.clear();
}

class Secret {
public:
    Secret() = default;

    // Copies the bytes; the source stays with its owner, who wipes it.
    explicit Secret(std::string_view text) : bytes_(std::make_unique<char[]>(text.size())), size_(text.size()) {
        text.copy(bytes_.get(), size_);
    }
    Secret(Secret&& other) noexcept : bytes_(std::move(other.bytes_)), size_(std::exchange(other.size_, 0)) {}
    Secret& operator=(Secret&& other) noexcept {
        std::swap(bytes_, other.bytes_);
        std::swap(size_, other.size_);
        return *this;
    }
    Secret(const Secret&) = delete;
    Secret& operator=(const Secret&) = delete;
    ~Secret() {
        if (bytes_) {
            wipe(bytes_.get(), size_);
        }
    }

    // The bytes, good as long as the secret.
    [[nodiscard]] std::string_view text() const { return {bytes_.get(), size_}; }
    [[nodiscard]] bool empty() const { return size_ == 0; }

private:
    std::unique_ptr<char[]> bytes_; // NOLINT(cppcoreguidelines-avoid-c-arrays): a buffer of fixed size
    std::size_t size_ = 0;
};

} // namespace fernwick::support
