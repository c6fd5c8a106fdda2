#include "portability/AutomaticBackups.h"

#include "portability/ProgrammingFault.h"
#include "portability/StoredDate.h"

#include <algorithm>
#include <chrono>
#include <limits>
#include <utility>

namespace fernwick {
namespace {

// Two backups within a second are one file, so that more of them would only keep the main thread busy. Beyond a
// century timers have no end.
constexpr std::chrono::seconds kShortestInterval{1};
constexpr std::chrono::seconds kLongestInterval = std::chrono::hours(24 * 365 * 100);

std::int64_t secondsOf(std::int64_t hours) {
    constexpr std::int64_t kSecondsPerHour = 3600;
    using Limits = std::numeric_limits<std::int64_t>;
    if (hours > Limits::max() / kSecondsPerHour || hours < Limits::min() / kSecondsPerHour) {
        programmingFault("backupIntervalHrs is more than the seconds that a number holds");
    }
    return hours * kSecondsPerHour;
}

} // namespace

AutomaticBackups::AutomaticBackups(Services services) : services_(std::move(services)) {
    services_.state.set(&SyncState::lastBackupDate, readStoredDate(services_.defaults, kLastBackupKey));
}

bool AutomaticBackups::runBackup(const SyncCompletion& completion) {
    const auto name = writeBackup();
    if (name) {
        const auto now = services_.clock.now();
        services_.state.set(&SyncState::lastBackupDate, now);
        storeDate(services_.defaults, kLastBackupKey, now);
        services_.state.set(&SyncState::statusMessage, "Backup saved: " + *name);
        rotateBackups();
        refreshBackupEntries();
    }
    if (completion) {
        completion(name.has_value(), name ? *name : name.error());
    }
    return name.has_value();
}

// The file's name, or what to show.
std::expected<std::string, std::string> AutomaticBackups::writeBackup() {
    const auto blobs = readCatalogue(services_.defaults);
    if (!blobs[CatalogueIndex::tunnels]) {
        return std::unexpected("No data to backup");
    }
    const auto folder = backupFolder();
    if (const auto made = services_.folder.make(folder); !made) {
        return std::unexpected("Cannot create backup folder: " + made.error().description);
    }
    const auto bytes = services_.encode(blobs);
    if (!bytes) {
        return std::unexpected("Failed to encode backup");
    }
    auto name = BackupFolder::nameAt(services_.clock.now());
    if (const auto written = services_.folder.write(folder + "/" + name, *bytes); !written) {
        return std::unexpected("Write failed: " + written.error().description);
    }
    return name;
}

void AutomaticBackups::rotateBackups() {
    refreshBackupEntries();
    const auto count = services_.settings.maxBackupCount();
    if (count < 0) {
        programmingFault("maxBackupCount is negative");
    }
    const auto entries = services_.state.now().backupEntries; // a copy: who listens may have it listed anew
    for (auto index = static_cast<std::uint64_t>(count); index < entries.size(); ++index) {
        services_.folder.remove(entries[index].url);
    }
}

void AutomaticBackups::refreshBackupEntries() {
    services_.state.set(&SyncState::backupEntries, services_.folder.entries(backupFolder()));
}

void AutomaticBackups::deleteBackup(const BackupEntry& entry) {
    services_.folder.remove(entry.url);
    refreshBackupEntries();
}

std::string AutomaticBackups::backupFolder() const {
    return services_.folder.pathOf(services_.settings.backupPath());
}

void AutomaticBackups::configureAutoBackupTimer() {
    if (services_.settings.enableAutoBackup()) {
        startAutoBackupTimer();
    } else {
        autoBackupTimer_.reset();
    }
}

void AutomaticBackups::startAutoBackupTimer() {
    autoBackupTimer_.reset();
    const auto interval = secondsOf(services_.settings.backupIntervalHrs());
    const auto step = std::clamp(std::chrono::seconds(interval), kShortestInterval, kLongestInterval);
    autoBackupTimer_ = services_.dispatch.repeatingTimer(step, [weak = self_.weak()] {
        if (auto* backups = weak.get()) {
            backups->runBackup({});
        }
    });
    const auto last = readStoredDate(services_.defaults, kLastBackupKey);
    const auto now = services_.clock.now();
    if (!last || now.secondsSinceReference - last->secondsSinceReference >= static_cast<double>(interval)) {
        runBackup({});
    }
}

} // namespace fernwick
