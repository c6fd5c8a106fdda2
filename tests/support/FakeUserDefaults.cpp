#include "support/FakeUserDefaults.h"

namespace fernwick::fakes {

FakeUserDefaults::FakeUserDefaults(std::shared_ptr<FakeDisk> disk, std::string domain)
    : disk_(std::move(disk)), domain_(std::move(domain)) {
    if (const auto found = disk_->domains.find(domain_); found != disk_->domains.end()) {
        values_ = found->second;
    }
}

std::optional<platform::PropertyValue> FakeUserDefaults::value(std::string_view key) const {
    const auto found = values_.find(key);
    return found != values_.end() ? std::optional(found->second) : std::nullopt;
}

void FakeUserDefaults::set(std::string_view key, platform::PropertyValue value) {
    values_.insert_or_assign(std::string(key), std::move(value));
    changes_.emplace_back(key);
    write();
}

void FakeUserDefaults::remove(std::string_view key) {
    const auto found = values_.find(key);
    if (found == values_.end()) {
        return;
    }
    values_.erase(found);
    changes_.emplace_back(key);
    write();
}

std::vector<std::string> FakeUserDefaults::keys() const {
    std::vector<std::string> keys;
    for (const auto& [key, value] : values_) {
        keys.push_back(key);
    }
    return keys;
}

void FakeUserDefaults::write() {
    if (disk_->failing) {
        ++disk_->failedWrites;
        return;
    }
    ++disk_->writes;
    disk_->domains[domain_] = values_;
}

} // namespace fernwick::fakes
