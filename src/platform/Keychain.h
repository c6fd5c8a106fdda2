// The user's keychain: secrets that the system keeps, each under a class, a service and an account.
// Threads: main thread. Every call is synchronous and bounded in time: a keychain that is locked, absent or
// stuck makes it fail, and never waits for a person.
#pragma once

#include "support/Secret.h"

#include <expected>
#include <string>

namespace fernwick::platform {

// What kind of item; the application keeps generic passwords alone (kSecClassGenericPassword).
enum class KeychainClass { genericPassword };

// When the system may hand an item out: from the first unlock after a start on, without moving to another
// machine of its own accord (kSecAttrAccessibleAfterFirstUnlock).
enum class KeychainAccessibility { afterFirstUnlock };

enum class KeychainError {
    notFound,    // no such item
    locked,      // it is there, or might be, and nobody has unlocked the keychain
    unavailable, // no keychain service, or one that gave no answer in time
    refused      // the service said no
};

// Which item: class, service and account alone identify it.
struct KeychainQuery {
    std::string service;
    std::string account;
    KeychainClass itemClass = KeychainClass::genericPassword;

    bool operator==(const KeychainQuery&) const = default;
};

// A new item. The label is what a person reads in the keychain's own window; nothing looks at it.
struct KeychainItem {
    KeychainQuery identity;
    std::string label = {};
    KeychainAccessibility accessibility = KeychainAccessibility::afterFirstUnlock;
};

class Keychain {
public:
    virtual ~Keychain() = default;

    // The value of one matching item, any bytes (SecItemCopyMatching with a limit of one).
    [[nodiscard]] virtual std::expected<support::Secret, KeychainError>
    copyMatching(const KeychainQuery& query) = 0;

    // Removes every matching item (SecItemDelete).
    [[nodiscard]] virtual std::expected<void, KeychainError> remove(const KeychainQuery& query) = 0;

    // Adds an item (SecItemAdd). The value is any bytes.
    [[nodiscard]] virtual std::expected<void, KeychainError> add(const KeychainItem& item,
                                                                 const support::Secret& value) = 0;
};

} // namespace fernwick::platform
