// The secrets of tunnels and keys, kept in the user's keychain and nowhere else. No state, no cache: each call
// goes to the keychain. A failure is silent by design, and a secret that could not be kept counts as none.
// Threads: main thread only.
#pragma once

#include "platform/Keychain.h"
#include "support/Uuid.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace fernwick {

// What a person calls the owner of a secret; used for labels alone.
using SecretOwnerName = std::function<std::string(const support::Uuid&)>;

class KeychainStore {
public:
    // The services under which the two kinds of secret stand; the account is the owner's id, upper case.
    static constexpr std::string_view kKeyPassphraseService = "com.fernwick.keypassphrase";
    static constexpr std::string_view kTunnelPasswordService = "com.fernwick.tunnelpassword";

    // The keychain outlives the store.
    explicit KeychainStore(platform::Keychain& keychain, SecretOwnerName tunnelName = {},
                           SecretOwnerName keyName = {});

    // The secret, or nothing when there is none, it cannot be had, is empty or is no valid UTF-8.
    [[nodiscard]] std::optional<support::Secret> loadKeyPassphrase(const support::Uuid& keyID) const;
    [[nodiscard]] std::optional<support::Secret> loadTunnelPassword(const support::Uuid& tunnelID) const;

    // Replaces the secret; an empty one removes it. A failure between removal and addition loses the old one.
    void saveKeyPassphrase(const support::Secret& secret, const support::Uuid& keyID);
    void saveTunnelPassword(const support::Secret& secret, const support::Uuid& tunnelID);

    void deleteKeyPassphrase(const support::Uuid& keyID);

private:
    platform::Keychain& keychain_;
    SecretOwnerName tunnelName_;
    SecretOwnerName keyName_;
};

} // namespace fernwick
