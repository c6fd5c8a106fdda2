// The keychain on the Secret Service, with attributes `service` and `account`. A thread of its own talks to the
// service, so that a stuck one holds a caller up no longer than `kAnswerLimit`. Standard error is told once for
// each kind of reason why secrets are neither read nor saved.
//
// A call that is not answered in time fails by `unavailable`, and so does every further one, at once, until the
// thread has caught up. A value that comes late is wiped. Removals and additions are not lost by that: they are
// carried out in their order when the service answers again. Where it has left the bus they fail.
//
// Nobody is waited for: what is locked fails by `locked` at once. Where there is a display, the service is then
// let to ask the person to unlock, and not again until an item could be read or written.
// Threads: made, used and destroyed on one thread, in this application the main one.
#pragma once

#include "platform/HostEnvironment.h"
#include "platform/Keychain.h"

#include <chrono>
#include <memory>
#include <set>
#include <thread>

namespace fernwick::platform {

enum class KeyringFailure;
struct KeyringRequest;

class SecretServiceKeychain final : public Keychain {
public:
    // How long a call waits for its answer.
    static constexpr std::chrono::milliseconds kAnswerLimit{500};

    // How long the destructor waits for a thread that the service holds up.
    static constexpr std::chrono::milliseconds kEndLimit{100};

    // Neither connects nor starts the thread; the first call does both.
    explicit SecretServiceKeychain(const HostEnvironment& host);
    SecretServiceKeychain(const SecretServiceKeychain&) = delete;
    SecretServiceKeychain& operator=(const SecretServiceKeychain&) = delete;
    // Drops what has not begun. A thread that is stuck is left behind.
    ~SecretServiceKeychain() override;

    [[nodiscard]] std::expected<support::Secret, KeychainError>
    copyMatching(const KeychainQuery& query) override;
    [[nodiscard]] std::expected<void, KeychainError> remove(const KeychainQuery& query) override;
    // An item of the same identity is replaced.
    [[nodiscard]] std::expected<void, KeychainError> add(const KeychainItem& item,
                                                         const support::Secret& value) override;

private:
    class Worker;

    [[nodiscard]] std::expected<support::Secret, KeychainError> ask(KeyringRequest request);
    [[nodiscard]] std::expected<void, KeychainError> change(KeyringRequest request);
    void tellOnce(KeyringFailure failure);

    std::shared_ptr<Worker> worker_; // shared with the thread, which may have to be left behind
    std::thread thread_;
    std::set<KeyringFailure> told_;
};

} // namespace fernwick::platform
