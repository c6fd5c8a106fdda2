// A machine without a keychain: every call says that it is unavailable. Threads: any.
#pragma once

#include "platform/Keychain.h"

namespace fernwick::platform {

class NoKeychain final : public Keychain {
public:
    [[nodiscard]] std::expected<support::Secret, KeychainError>
    copyMatching(const KeychainQuery& /*query*/) override {
        return std::unexpected(KeychainError::unavailable);
    }
    [[nodiscard]] std::expected<void, KeychainError> remove(const KeychainQuery& /*query*/) override {
        return std::unexpected(KeychainError::unavailable);
    }
    [[nodiscard]] std::expected<void, KeychainError> add(const KeychainItem& /*item*/,
                                                         const support::Secret& /*value*/) override {
        return std::unexpected(KeychainError::unavailable);
    }
};

} // namespace fernwick::platform
