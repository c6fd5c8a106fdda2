// The one persisted list of tunnels. Every change rewrites the whole list; there is no other copy.
// Threads: main thread only.
#pragma once

#include "catalogue/Tunnel.h"
#include "platform/Clock.h"
#include "platform/UserDefaults.h"
#include "support/Signal.h"

#include <string_view>
#include <vector>

namespace fernwick {

class TunnelStore {
public:
    // The defaults key that holds the list.
    static constexpr std::string_view kDefaultsKey = "savedTunnelsData_v2";

    // The notification that tells the main window to reload after another writer changed the key.
    static constexpr std::string_view kDidChangeNotification = "fernwick.tunnelsDidChange";

    // Loads the list. Missing or undecodable data is replaced, in memory and on disk, by one sample tunnel.
    TunnelStore(platform::UserDefaults& defaults, const platform::Clock& clock);
    TunnelStore(const TunnelStore&) = delete;
    TunnelStore& operator=(const TunnelStore&) = delete;

    // The catalogue, in the order of adding.
    [[nodiscard]] const std::vector<Tunnel>& tunnels() const { return tunnels_; }

    // The first tunnel with that id, or null. The pointer is good until the next change.
    [[nodiscard]] const Tunnel* find(const support::Uuid& id) const;

    // Appends and saves. A duplicate id is not looked for.
    void add(Tunnel tunnel);

    // Replaces the first tunnel with the same id and saves; without one, nothing happens and nothing is saved.
    void update(const Tunnel& tunnel);

    // Removes every tunnel with that id and saves.
    void remove(const support::Uuid& id);

    // Reads the key again; missing or undecodable data changes nothing.
    void reload();

    // Writes the whole list. A list that cannot be encoded is not written, and nobody is told.
    void save();

    // Tells the screens to draw anew although no tunnel changed (a status did).
    void announceChange() { changed.emit(); }

    // Emitted after every change of the list, and by announceChange.
    support::Signal<> changed;

private:
    void load();

    platform::UserDefaults& defaults_;
    const platform::Clock& clock_;
    std::vector<Tunnel> tunnels_;
};

} // namespace fernwick
