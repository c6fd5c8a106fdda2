// Everything that a SyncManager needs, on fakes, and what it told.
#pragma once

#include "catalogue/Tunnel.h"
#include "portability/SyncManager.h"
#include "support/Base64.h"
#include "support/FakeClock.h"
#include "support/FakeCloudStore.h"
#include "support/FakeDispatch.h"
#include "support/FakeFileSystem.h"
#include "support/FakeHostEnvironment.h"
#include "support/FakePlatform.h"
#include "support/FakeUserDefaults.h"
#include "support/RecordWriter.h"

#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace fernwick::tests {

inline constexpr std::string_view kTunnels = "savedTunnelsData_v2";
inline constexpr std::string_view kTags = "savedTunnelTags";
inline constexpr std::string_view kKeys = "savedSSHKeys";
inline constexpr std::string_view kProxies = "com.fernwick.proxies";
inline constexpr std::string_view kRules = "com.fernwick.rules";
inline constexpr std::string_view kDefaultFolder = "/home/someone/Documents/Fernwick/Backups";

// What a completion was called with, each time.
struct Told {
    bool succeeded = false;
    std::string message;

    bool operator==(const Told&) const = default;
};
using Tellings = std::vector<Told>;

inline std::string base64(std::string_view bytes) {
    std::string text;
    support::appendBase64(text, bytes);
    return text;
}

// Records of that many default values, as they are stored.
template <support::Record R>
std::string listOf(std::size_t count) {
    return *support::encodeList(std::vector<R>(count));
}

struct SyncWorld {
    SyncWorld() {
        updates = notifications.observe("iCloudDataUpdated", [this] { ++updated; });
        reloads = rules.proxiesChanged.connect([this] { ++reloaded; });
    }

    // Makes the manager, as the page does when it is first shown, and lets it settle.
    SyncManager& open() {
        make();
        dispatch.runAll();
        return *manager;
    }

    // The same, with what it queued still waiting.
    SyncManager& make() {
        manager = std::make_unique<SyncManager>(services());
        return *manager;
    }

    [[nodiscard]] SyncServices services() {
        return {defaults, dispatch, clock, files, dialogs, cloud, notifications, host, rules, encode};
    }

    // The text under the key.
    [[nodiscard]] std::string stored(std::string_view key) const {
        const auto data = defaults.data(key);
        return data ? data->bytes() : "(nothing)";
    }

    [[nodiscard]] double number(std::string_view key) const {
        const auto value = defaults.value(key);
        const auto* found = value ? value->as<double>() : nullptr;
        return found != nullptr ? *found : 0.0;
    }

    // A completion that is remembered in `told`.
    [[nodiscard]] SyncCompletion completion() {
        return [this](bool succeeded, const std::string& message) { told.push_back({succeeded, message}); };
    }
    // The same for the cloud's operations.
    [[nodiscard]] CloudSync::Completion answer() {
        return [this](bool succeeded) { told.push_back({succeeded, ""}); };
    }

    // The labels of the cloud's status from now on, without repetitions.
    void watchStatus() {
        statuses = {manager->state().iCloudStatus.label()};
        watching = manager->changed.connect([this] {
            if (auto label = manager->state().iCloudStatus.label(); label != statuses.back()) {
                statuses.push_back(std::move(label));
            }
        });
    }

    [[nodiscard]] std::vector<std::string> listedNames() const {
        std::vector<std::string> names;
        for (const auto& entry : manager->state().backupEntries) {
            names.emplace_back(entry.name());
        }
        return names;
    }

    void putFile(const std::string& path, std::string bytes, std::optional<support::Date> modified = {}) {
        files.files[path] = {std::move(bytes), 0600};
        if (modified) {
            files.modified[path] = *modified;
        }
    }

    [[nodiscard]] support::Date ago(std::chrono::hours hours) const {
        return {clock.now().secondsSinceReference - std::chrono::duration<double>(hours).count()};
    }

    fakes::FakeDispatch dispatch;
    fakes::FakeClock clock{dispatch};
    fakes::FakeUserDefaults defaults;
    fakes::FakeFileSystem files;
    fakes::FakeDialogs dialogs;
    fakes::FakeCloudStore cloud{dispatch};
    fakes::FakeHostEnvironment host;
    support::NotificationCenter notifications;
    ProxyRuleStore rules{defaults, dispatch};
    CatalogueEncoder encode = &encodeCatalogue;
    std::unique_ptr<SyncManager> manager;

    Tellings told;
    std::vector<std::string> statuses;
    int updated = 0;  // posts of iCloudDataUpdated
    int reloaded = 0; // times that proxies and rules were read again
    support::Subscription updates;
    support::Subscription reloads;
    support::Subscription watching;
};

} // namespace fernwick::tests
