// Preferences that tell on standard output what they are asked to keep, before they keep it: a line
// "set KEY CRC LENGTH" for bytes, and "synced" once all that was told before is in the file.
#pragma once

#include "platform/UserDefaults.h"

#include <cstdio>
#include <memory>
#include <string>
#include <unistd.h>
#include <utility>
#include <zlib.h>

namespace fernwick::crash {

// One line, which is with the reader when the call returns, whatever becomes of this process.
inline void tell(const std::string& line) {
    const auto text = line + "\n";
    if (write(STDOUT_FILENO, text.data(), text.size()) != static_cast<ssize_t>(text.size())) {
        std::_Exit(EXIT_FAILURE);
    }
}

class JournalDefaults final : public platform::UserDefaults {
public:
    explicit JournalDefaults(std::unique_ptr<platform::UserDefaults> real) : real_(std::move(real)) {}

    [[nodiscard]] std::optional<platform::PropertyValue> value(std::string_view key) const override {
        return real_->value(key);
    }
    void set(std::string_view key, platform::PropertyValue value) override {
        if (const auto* data = value.as<platform::Data>()) {
            const auto& bytes = data->bytes();
            const auto sum =
                crc32(0, reinterpret_cast<const Bytef*>(bytes.data()), static_cast<uInt>(bytes.size()));
            tell("set " + std::string(key) + " " + std::to_string(sum) + " " + std::to_string(bytes.size()));
        }
        real_->set(key, std::move(value));
    }
    void remove(std::string_view key) override { real_->remove(key); }
    [[nodiscard]] std::vector<std::string> keys() const override { return real_->keys(); }
    void synchronize() override {
        real_->synchronize();
        tell("synced");
    }

private:
    std::unique_ptr<platform::UserDefaults> real_;
};

} // namespace fernwick::crash
