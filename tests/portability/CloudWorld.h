// A SyncWorld with an account, and what its store holds.
#pragma once

#include "SyncWorld.h"

#include <map>
#include <string>
#include <vector>

namespace fernwick::tests {

using Labels = std::vector<std::string>;
using Texts = std::map<std::string, std::string>;

inline constexpr std::string_view kCloudTunnels = "fernWick_tunnels_v2";
inline constexpr std::string_view kCloudTags = "fernWick_tags_v1";
inline constexpr std::string_view kCloudKeys = "fernWick_keys_v1";
inline constexpr std::string_view kCloudProxies = "fernWick_proxies_v1";
inline constexpr std::string_view kCloudRules = "fernWick_rules_v1";

struct CloudWorld : SyncWorld {
    CloudWorld() { cloud.signIn(); }

    // A manager that shares the catalogue already, and has settled.
    SyncManager& openSharing() {
        defaults.set("syncWithiCloud", {true});
        open();
        reloaded = 0;
        return *manager;
    }

    // Another machine writes, and the store tells of it.
    void writeElsewhere(std::string_view key, std::string bytes) {
        cloud.writeElsewhere(key, std::move(bytes));
        cloud.requestSynchronize();
        dispatch.runAll();
    }

    [[nodiscard]] const SyncState& state() const { return manager->state(); }

    [[nodiscard]] std::string label() const { return state().iCloudStatus.label(); }

    // That the last exchange was just now, in the state as in the defaults.
    [[nodiscard]] bool stampedNow() const {
        return state().lastSyncDate == clock.now() &&
               number("lastSyncTS") == clock.now().secondsSinceUnixEpoch();
    }
};

} // namespace fernwick::tests
