#include "platform/linux/CloudMemory.h"

namespace fernwick::platform {

std::optional<Data> CloudMemory::data(std::string_view key) const {
    const auto found = entries_.find(key);
    return found != entries_.end() ? found->second.value : std::nullopt;
}

void CloudMemory::set(std::string_view key, Data value) {
    auto& entry = entries_[std::string(key)];
    entry.value = std::move(value);
    entry.pending = true;
}

std::vector<std::pair<std::string, Data>> CloudMemory::pending() const {
    std::vector<std::pair<std::string, Data>> values;
    for (const auto& [key, entry] : entries_) {
        if (entry.pending && entry.value) {
            values.emplace_back(key, *entry.value);
        }
    }
    return values;
}

void CloudMemory::written(const std::string& key, const Data& value) {
    auto& entry = entries_[key];
    entry.seen = value;
    entry.pending = entry.pending && entry.value != value;
}

std::vector<std::string> CloudMemory::take(const CloudFiles& files) {
    for (const auto& [key, value] : files.values) {
        entries_.try_emplace(key);
    }
    std::vector<std::string> changed;
    for (auto& [key, entry] : entries_) {
        if (files.unknown.contains(key)) {
            continue;
        }
        const auto found = files.values.find(key);
        auto now = found != files.values.end() ? std::optional(found->second) : std::nullopt;
        if (now == entry.seen) {
            continue;
        }
        entry.seen = std::move(now);
        if (!entry.pending) {
            entry.value = entry.seen;
            changed.push_back(key);
        }
    }
    if (!everTaken_) {
        everTaken_ = true;
        changed.clear();
    }
    return changed;
}

} // namespace fernwick::platform
