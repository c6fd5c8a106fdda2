// What a keychain asks of the Secret Service, the desktop's keyring (freedesktop.org, Secret Service API), over
// GLib's connection to the session bus.
// Threads: one thread of its owner's, which is blocked until the service answers; never the main thread.
#pragma once

#include "platform/ChildProcess.h"
#include "platform/Keychain.h"

#include <expected>
#include <memory>
#include <string>

// NOLINTBEGIN(bugprone-reserved-identifier): the names are GLib's and libsecret's own
typedef struct _GCancellable GCancellable;
// NOLINTEND(bugprone-reserved-identifier)

namespace fernwick::platform {

// One thing asked of the keyring.
struct KeyringRequest {
    enum class Kind { copy, remove, add };

    Kind kind = Kind::copy;
    KeychainItem item = {};     // of a copy and a removal, only the identity counts
    support::Secret value = {}; // of an addition
};

// Why a request came to nothing.
enum class KeyringFailure {
    notFound,
    locked,       // the item, or the collection that new ones go to
    noCollection, // nobody has made one that new items go to
    unreachable,  // no bus, or nobody on it who keeps secrets
    noAnswer,     // the service is there and does not answer
    refused       // it said no
};

class SecretServiceClient {
public:
    using Result = std::expected<support::Secret, KeyringFailure>; // the secret is empty but for a copy

    // Connects with the first request; the environment is the process's own and tells whether there is a bus.
    // Once `cancellable` is cancelled every request fails soon.
    SecretServiceClient(const Environment& environment, GCancellable* cancellable);
    SecretServiceClient(const SecretServiceClient&) = delete;
    SecretServiceClient& operator=(const SecretServiceClient&) = delete;
    ~SecretServiceClient();

    // Carries a request out. A person is never asked, whatever is locked. A service that has come or was
    // replaced since the last request is found. An addition takes the place of an item of the same identity; a
    // removal takes away all that are unlocked.
    [[nodiscard]] Result perform(const KeyringRequest& request);

    // After a request that failed by `locked` or `noCollection`: lets the service ask the person to unlock or
    // to make the collection. Does not wait for the person.
    void askPerson();

private:
    struct Connection;

    [[nodiscard]] Result attempt(const KeyringRequest& request);
    [[nodiscard]] std::expected<void, KeyringFailure> connect();
    [[nodiscard]] Result copy(const KeychainQuery& query);
    [[nodiscard]] Result remove(const KeychainQuery& query);
    [[nodiscard]] Result add(const KeychainItem& item, const support::Secret& value);

    Environment environment_;
    GCancellable* cancellable_;
    std::unique_ptr<Connection> connection_;
    std::string lockedPath_; // what the last request found locked; empty when a collection is to be made
};

} // namespace fernwick::platform
