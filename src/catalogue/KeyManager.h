// The persisted list of identity keys.
// Threads: main thread only.
#pragma once

#include "catalogue/IdentityKey.h"
#include "platform/UserDefaults.h"
#include "support/Signal.h"

#include <string_view>
#include <vector>

namespace fernwick {

class KeyManager {
public:
    // The defaults key that holds the list.
    static constexpr std::string_view kDefaultsKey = "savedSSHKeys";

    // Loads the list. Missing or undecodable data gives an empty list and stays as it is until the next save.
    explicit KeyManager(platform::UserDefaults& defaults);
    KeyManager(const KeyManager&) = delete;
    KeyManager& operator=(const KeyManager&) = delete;

    // The keys, in the order of adding.
    [[nodiscard]] const std::vector<IdentityKey>& keys() const { return keys_; }

    // Appends and saves, unless a key with exactly that path is there; then nothing happens, not even a save.
    void add(IdentityKey key);

    // Removes the key with that id and saves. Tunnels that refer to it keep the reference.
    void remove(const support::Uuid& id);

    // Replaces the first key with the same id and saves; without one nothing happens.
    void update(const IdentityKey& key);

    // Writes the whole list. A list that cannot be encoded is not written, and nobody is told.
    void save();

    // Emitted after every change of the list.
    support::Signal<> changed;

private:
    platform::UserDefaults& defaults_;
    std::vector<IdentityKey> keys_;
};

} // namespace fernwick
