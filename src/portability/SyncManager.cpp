#include "portability/SyncManager.h"

#include "catalogue/Tunnel.h"
#include "routing/AppRule.h"
#include "routing/ProxyConfig.h"
#include "support/IsoDate.h"
#include "support/RecordReader.h"

#include <fmt/format.h>

namespace fernwick {
namespace {

// How long after a restore it is told, so that proxies and rules have followed.
constexpr platform::Duration kRestoreDelay{100};

// How many records a list has; 0 when it is missing or cannot be decoded.
template <support::Record R>
std::size_t countIn(const CatalogueBlobs::Blob& blob) {
    const auto list = blob ? support::decodeList<R>(blob->bytes()) : std::vector<R>();
    return list ? list->size() : 0;
}

std::string exportedText(const CatalogueBlobs& blobs) {
    return fmt::format(
        "Exported {} tunnels, {} proxies, {} rules", countIn<Tunnel>(blobs[CatalogueIndex::tunnels]),
        countIn<ProxyConfig>(blobs[CatalogueIndex::proxies]), countIn<AppRule>(blobs[CatalogueIndex::rules]));
}

} // namespace

SyncManager::SyncManager(SyncServices services)
    : services_(std::move(services)),
      settings_(services_.defaults, changed),
      backups_({.defaults = services_.defaults,
                .dispatch = services_.dispatch,
                .clock = services_.clock,
                .settings = settings_,
                .state = state_,
                .folder = {services_.files, services_.clock, services_.host},
                .encode = services_.encode}),
      cloud_({.defaults = services_.defaults,
              .dispatch = services_.dispatch,
              .clock = services_.clock,
              .store = services_.cloud,
              .notifications = services_.notifications,
              .rules = services_.rules,
              .state = state_,
              .changed = changed}) {
    refreshICloudStatus();
    refreshBackupEntries();
    if (settings_.enableAutoBackup()) {
        startAutoBackupTimer();
    }
    if (syncWithiCloud()) {
        startICloudObserver();
    }
}

void SyncManager::exportAll(SyncCompletion completion) {
    auto blobs = readCatalogue(services_.defaults);
    if (!blobs[CatalogueIndex::tunnels]) {
        completion(false, "No tunnels to export");
        return;
    }
    auto bytes = services_.encode(blobs);
    if (!bytes) {
        completion(false, "Failed to encode export");
        return;
    }
    const auto name = "Fernwick_Export_" + support::iso8601Text(services_.clock.now()) + ".backup";
    services_.dialogs.saveFile({.name = name, .kind = {.name = "Fernwick backups", .extensions = {"backup"}}},
                               [weak = self_.weak(), blobs = std::move(blobs), bytes = *std::move(bytes),
                                completion = std::move(completion)](const std::optional<std::string>& path) {
                                   if (auto* manager = weak.get()) {
                                       manager->writeExport(path, bytes, blobs, completion);
                                   }
                               });
}

void SyncManager::writeExport(const std::optional<std::string>& path, const std::string& bytes,
                              const CatalogueBlobs& blobs, const SyncCompletion& completion) {
    if (!path) {
        completion(false, "Cancelled");
        return;
    }
    if (const auto written = services_.files.write(*path, bytes, platform::kOwnerOnlyFile); !written) {
        completion(false, written.error().description);
        return;
    }
    completion(true, exportedText(blobs));
}

void SyncManager::restoreBackup(const std::string& url, SyncCompletion completion) {
    auto bytes = services_.files.read(url);
    if (!bytes) {
        completion(false, "Cannot read file");
        return;
    }
    // All of it is decoded before any of it is stored.
    const auto blobs = decodeCatalogue(*bytes);
    if (blobs) {
        storeCatalogue(services_.defaults, *blobs);
    }
    // Tags, keys and rules are stored, but alone they are no backup.
    if (blobs && ((*blobs)[CatalogueIndex::tunnels] || (*blobs)[CatalogueIndex::proxies])) {
        services_.rules.reloadFromDefaults();
        services_.dispatch.mainAfter(kRestoreDelay, [weak = self_.weak(), completion = std::move(completion)] {
            if (auto* manager = weak.get()) {
                manager->restored("Restore successful", completion);
            }
        });
        return;
    }
    if (!support::decodeList<Tunnel>(*bytes)) {
        completion(false, "Unrecognised backup format");
        return;
    }
    services_.defaults.set(listAt(CatalogueIndex::tunnels).defaultsKey, {platform::Data(*std::move(bytes))});
    restored("Tunnels restored successfully", completion);
}

void SyncManager::restored(std::string_view message, const SyncCompletion& completion) {
    services_.notifications.post(kCloudDataUpdated);
    completion(true, std::string(message));
}

} // namespace fernwick
