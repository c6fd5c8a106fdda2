// A keychain in memory, which can fail on command and notes every call.
// Threads: the test's thread.
#pragma once

#include "platform/Keychain.h"

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

namespace fernwick::fakes {

class FakeKeychain final : public platform::Keychain {
public:
    struct Stored {
        platform::KeychainItem item;
        std::string value;
    };

    [[nodiscard]] std::expected<support::Secret, platform::KeychainError>
    copyMatching(const platform::KeychainQuery& query) override {
        calls.push_back("copyMatching " + query.service + " " + query.account);
        if (failure) {
            return std::unexpected(*failure);
        }
        const auto found = std::ranges::find(items, query, [](const auto& each) { return each.item.identity; });
        if (found == items.end()) {
            return std::unexpected(platform::KeychainError::notFound);
        }
        return support::Secret(found->value);
    }

    [[nodiscard]] std::expected<void, platform::KeychainError>
    remove(const platform::KeychainQuery& query) override {
        calls.push_back("remove " + query.service + " " + query.account);
        if (failure) {
            return std::unexpected(*failure);
        }
        const auto removed =
            std::erase_if(items, [&](const auto& each) { return each.item.identity == query; });
        return removed > 0 ? std::expected<void, platform::KeychainError>()
                           : std::unexpected(platform::KeychainError::notFound);
    }

    [[nodiscard]] std::expected<void, platform::KeychainError> add(const platform::KeychainItem& item,
                                                                   const support::Secret& value) override {
        calls.push_back("add " + item.identity.service + " " + item.identity.account);
        if (failure || addFailure) {
            return std::unexpected(failure ? *failure : *addFailure);
        }
        items.push_back({item, std::string(value.text())});
        return {};
    }

    std::vector<Stored> items;
    std::vector<std::string> calls;
    std::optional<platform::KeychainError> failure;    // of every call while it is set
    std::optional<platform::KeychainError> addFailure; // of additions alone
};

} // namespace fernwick::fakes
