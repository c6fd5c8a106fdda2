#include "portability/MigrationManager.h"

#include <array>
#include <optional>
#include <utility>

namespace fernwick {
namespace {

using platform::Data;
using platform::PropertyDictionary;
using platform::PropertyValue;

constexpr std::string_view kTunnelsKey = "savedTunnelsData_v2";
constexpr std::string_view kKeysKey = "savedSSHKeys";

constexpr std::array kDataKeys = {kTunnelsKey, std::string_view("savedTunnelsData"), kKeysKey,
                                  std::string_view("savedTunnelTags")};

struct Renamed {
    std::string_view oldKey;
    std::string_view newKey;
};
constexpr std::array kRenamedKeys = {Renamed{"com.larkmere.proxies", "com.fernwick.proxies"},
                                     Renamed{"com.larkmere.rules", "com.fernwick.rules"}};

constexpr std::array<std::string_view, 14> kSettingKeys = {
    "launchAtLogin", "connectOnLaunch",         "showAsOption",   "showStatusInMenuBar", "defaultSSHPort",
    "clashEnabled",  "mihomoPermissionGranted", "syncWithiCloud", "enableAutoBackup",    "backupIntervalHrs",
    "backupPath",    "maxBackupCount",          "lastBackupTS",   "lastSyncTS"};

// The smallest list that has something in it; "[]" has less.
constexpr std::size_t kLeastBytes = 3;

const PropertyValue* find(const PropertyDictionary& values, std::string_view key) {
    const auto found = values.find(key);
    return found != values.end() ? &found->second : nullptr;
}

bool holdsData(const PropertyDictionary& values, std::string_view key) {
    const auto* value = find(values, key);
    return value != nullptr && value->as<Data>() != nullptr;
}

// Whether what stands under the key may give way: nothing, or a list with nothing in it.
bool isVacant(const platform::UserDefaults& defaults, std::string_view key) {
    const auto value = defaults.value(key);
    const auto* bytes = value ? value->as<Data>() : nullptr;
    return !value || (bytes != nullptr && bytes->bytes().size() < kLeastBytes);
}

std::string line(std::string_view text, std::string_view rest) {
    return std::string(text).append(rest);
}

} // namespace

MigrationManager::MigrationManager(Services services) : services_(std::move(services)) {}

void MigrationManager::migrateIfNeeded() {
    const auto done = services_.defaults.value(migrationKey);
    if (done == PropertyValue{true}) {
        return;
    }
    services_.print("[Migration] Starting migration from Larkmere (quenby.Larkmere)...");
    const auto old = services_.provider.read(oldBundleID);
    if (!old) {
        services_.print("[Migration] Cannot open old defaults domain. Skipping.");
        finish();
        return;
    }
    if (!holdsData(*old, kTunnelsKey) && !holdsData(*old, kKeysKey)) {
        services_.print("[Migration] Old domain has no meaningful data. Skipping.");
        finish();
        return;
    }
    copyData(*old);
    copyRenamed(*old);
    copySettings(*old);
    migrateApplicationSupport();
    // First the values, then the mark: whoever finds the mark in the file finds them there too.
    services_.defaults.synchronize();
    services_.print("[Migration] ✅ Migration completed successfully!");
    finish();
}

void MigrationManager::copyData(const PropertyDictionary& old) {
    for (const auto key : kDataKeys) {
        const auto* value = find(old, key);
        if (value != nullptr && isVacant(services_.defaults, key)) {
            services_.defaults.set(key, *value);
            services_.print(line("[Migration] ✅ Copied: ", key));
        }
    }
}

void MigrationManager::copyRenamed(const PropertyDictionary& old) {
    for (const auto& [oldKey, newKey] : kRenamedKeys) {
        const auto* value = find(old, oldKey);
        if (value != nullptr && !services_.defaults.value(newKey)) {
            services_.defaults.set(newKey, *value);
            services_.print(line("[Migration] ✅ Copied: ", oldKey).append(" → ").append(newKey));
        }
    }
}

void MigrationManager::copySettings(const PropertyDictionary& old) {
    for (const auto key : kSettingKeys) {
        const auto* value = find(old, key);
        if (value != nullptr && !services_.defaults.value(key)) {
            services_.defaults.set(key, *value);
            services_.print(line("[Migration] ✅ Setting: ", key));
        }
    }
}

void MigrationManager::migrateApplicationSupport() {
    if (services_.supportFolders.empty()) {
        return;
    }
    const auto& folder = services_.supportFolders.front();
    const auto from = folder + "/Larkmere";
    if (!services_.files.exists(from)) {
        services_.print("[Migration] No old Application Support folder found.");
        return;
    }
    if (const auto copied = copyItems(from, folder + "/Fernwick"); !copied) {
        services_.print(line("[Migration] ⚠ AppSupport error: ", copied.error().description));
    }
}

std::expected<void, platform::FileError> MigrationManager::copyItems(const std::string& from,
                                                                     const std::string& to) {
    if (!services_.files.exists(to)) {
        if (auto made = services_.files.makeFolder(to); !made) {
            return made;
        }
    }
    const auto names = services_.items.names(from);
    if (!names) {
        return std::unexpected(names.error());
    }
    for (const auto& name : *names) {
        const auto place = to + "/" + name;
        if (services_.files.exists(place)) {
            continue;
        }
        if (auto copied = services_.items.copy(from + "/" + name, place); !copied) {
            return copied;
        }
        services_.print(line("[Migration] ✅ AppSupport: ", name));
    }
    return {};
}

void MigrationManager::finish() {
    services_.defaults.set(migrationKey, {true});
    services_.defaults.synchronize();
}

} // namespace fernwick
