// Preferences in memory, with a disk in memory behind them that can be told to fail.
// Threads: the test's thread.
#pragma once

#include "platform/UserDefaults.h"

#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace fernwick::fakes {

// What is left when the application is gone: the values of every domain.
struct FakeDisk {
    std::map<std::string, platform::PropertyDictionary, std::less<>> domains;
    std::set<std::string, std::less<>> unreadable; // domains of others whose files cannot be read
    bool failing = false;                          // full, or not to be written: what is set stays in memory
    std::size_t writes = 0;
    std::size_t failedWrites = 0;
};

class FakeUserDefaults final : public platform::UserDefaults {
public:
    // A domain of its own, on a disk of its own unless one is given.
    explicit FakeUserDefaults(std::shared_ptr<FakeDisk> disk = std::make_shared<FakeDisk>(),
                              std::string domain = "com.fernwick.Test");

    [[nodiscard]] std::optional<platform::PropertyValue> value(std::string_view key) const override;
    void set(std::string_view key, platform::PropertyValue value) override;
    void remove(std::string_view key) override;
    [[nodiscard]] std::vector<std::string> keys() const override;
    void synchronize() override { ++synchronizations_; }

    // Bytes, shorter to write down in a test.
    void setData(std::string_view key, std::string bytes) { set(key, {platform::Data(std::move(bytes))}); }

    [[nodiscard]] FakeDisk& disk() { return *disk_; }

    // The key of each set and remove, in order.
    [[nodiscard]] const std::vector<std::string>& changes() const { return changes_; }
    [[nodiscard]] std::size_t synchronizations() const { return synchronizations_; }

private:
    void write();

    std::shared_ptr<FakeDisk> disk_;
    std::string domain_;
    platform::PropertyDictionary values_;
    std::vector<std::string> changes_;
    std::size_t synchronizations_ = 0;
};

class FakeUserDefaultsProvider final : public platform::UserDefaultsProvider {
public:
    explicit FakeUserDefaultsProvider(std::shared_ptr<FakeDisk> disk = std::make_shared<FakeDisk>())
        : disk_(std::move(disk)) {}

    [[nodiscard]] std::unique_ptr<platform::UserDefaults> open(std::string_view domain) override {
        return std::make_unique<FakeUserDefaults>(disk_, std::string(domain));
    }

    [[nodiscard]] std::optional<platform::PropertyDictionary> read(std::string_view domain) override {
        if (disk_->unreadable.contains(domain)) {
            return std::nullopt;
        }
        const auto found = disk_->domains.find(domain);
        return found != disk_->domains.end() ? found->second : platform::PropertyDictionary();
    }

    [[nodiscard]] FakeDisk& disk() { return *disk_; }

private:
    std::shared_ptr<FakeDisk> disk_;
};

} // namespace fernwick::fakes
