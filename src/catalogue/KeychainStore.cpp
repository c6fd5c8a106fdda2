#include "catalogue/KeychainStore.h"

#include "support/Text.h"

#include <utility>

namespace fernwick {

namespace {

platform::KeychainQuery query(std::string_view service, const support::Uuid& account) {
    return {.service = std::string(service), .account = account.text()};
}

std::optional<support::Secret> load(platform::Keychain& keychain, const platform::KeychainQuery& identity) {
    auto value = keychain.copyMatching(identity);
    // By design a secret that cannot be read is one that is not there.
    if (!value || value->empty() || !support::isValidUtf8(value->text())) {
        return std::nullopt;
    }
    return std::move(*value);
}

void save(platform::Keychain& keychain, const platform::KeychainItem& item, const support::Secret& secret) {
    // By design nobody is told of a failure here: the next load finds nothing.
    (void)keychain.remove(item.identity);
    if (!secret.empty()) {
        (void)keychain.add(item, secret);
    }
}

std::string label(std::string_view kind, const SecretOwnerName& nameOf, const support::Uuid& id) {
    const auto name = nameOf ? nameOf(id) : std::string();
    return "Fernwick: " + std::string(kind) + " of " + (name.empty() ? id.text() : name);
}

} // namespace

KeychainStore::KeychainStore(platform::Keychain& keychain, SecretOwnerName tunnelName, SecretOwnerName keyName)
    : keychain_(keychain), tunnelName_(std::move(tunnelName)), keyName_(std::move(keyName)) {}

std::optional<support::Secret> KeychainStore::loadKeyPassphrase(const support::Uuid& keyID) const {
    return load(keychain_, query(kKeyPassphraseService, keyID));
}

std::optional<support::Secret> KeychainStore::loadTunnelPassword(const support::Uuid& tunnelID) const {
    return load(keychain_, query(kTunnelPasswordService, tunnelID));
}

void KeychainStore::saveKeyPassphrase(const support::Secret& secret, const support::Uuid& keyID) {
    save(keychain_,
         {.identity = query(kKeyPassphraseService, keyID), .label = label("passphrase", keyName_, keyID)},
         secret);
}

void KeychainStore::saveTunnelPassword(const support::Secret& secret, const support::Uuid& tunnelID) {
    save(keychain_,
         {.identity = query(kTunnelPasswordService, tunnelID),
          .label = label("password", tunnelName_, tunnelID)},
         secret);
}

void KeychainStore::deleteKeyPassphrase(const support::Uuid& keyID) {
    // As above: a failure is silent.
    (void)keychain_.remove(query(kKeyPassphraseService, keyID));
}

} // namespace fernwick
