#include "portability/BackupSettings.h"

#include <utility>

namespace fernwick {
namespace {

// The value under the key, or what stands for it when it is missing or of another type.
template <class T>
T valueOr(const platform::UserDefaults& defaults, std::string_view key, T otherwise) {
    const auto found = defaults.value(key);
    const T* const value = found ? found->as<T>() : nullptr;
    return value != nullptr ? *value : otherwise;
}

} // namespace

BackupSettings::BackupSettings(platform::UserDefaults& defaults, support::Signal<>& changed)
    : defaults_(defaults), changed_(changed) {}

bool BackupSettings::enableAutoBackup() const {
    return valueOr(defaults_, kEnabledKey, false);
}

void BackupSettings::setEnableAutoBackup(bool enabled) {
    set(kEnabledKey, {enabled});
}

std::int64_t BackupSettings::backupIntervalHrs() const {
    return valueOr(defaults_, kIntervalKey, kInterval);
}

void BackupSettings::setBackupIntervalHrs(std::int64_t hours) {
    set(kIntervalKey, {hours});
}

std::string BackupSettings::backupPath() const {
    return valueOr(defaults_, kPathKey, std::string());
}

void BackupSettings::setBackupPath(std::string path) {
    set(kPathKey, {std::move(path)});
}

std::int64_t BackupSettings::maxBackupCount() const {
    return valueOr(defaults_, kCountKey, kCount);
}

void BackupSettings::setMaxBackupCount(std::int64_t count) {
    set(kCountKey, {count});
}

void BackupSettings::set(std::string_view key, platform::PropertyValue value) {
    defaults_.set(key, std::move(value));
    changed_.emit();
}

} // namespace fernwick
