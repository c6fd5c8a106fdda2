// What every Keychain does, the fake one and the one on the Secret Service.
#pragma once

#include "platform/Keychain.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace fernwick::platform {

// `Harness` has keychain(), which is empty and unlocked.
template <class Harness>
class KeychainContract : public testing::Test {
protected:
    static constexpr std::string_view kAccount = "0B6B1A1C-63B4-4F0D-9C9B-0F0C1C0B7D11";

    static KeychainQuery query(std::string_view service = "com.fernwick.tunnelpassword",
                               std::string_view account = kAccount) {
        return {.service = std::string(service), .account = std::string(account)};
    }

    void add(const KeychainQuery& identity, std::string_view value) {
        EXPECT_TRUE(
            keychain().add({.identity = identity, .label = "Fernwick: a test's"}, support::Secret(value)));
    }

    // The value that is kept, or the name of the error.
    std::string kept(const KeychainQuery& identity) {
        const auto value = keychain().copyMatching(identity);
        if (value) {
            return std::string(value->text());
        }
        return value.error() == KeychainError::notFound ? "nothing" : "a failure";
    }

    Keychain& keychain() { return harness_.keychain(); }

    Harness harness_;
};

TYPED_TEST_SUITE_P(KeychainContract);

TYPED_TEST_P(KeychainContract, NothingIsFoundInAnEmptyOne) {
    EXPECT_EQ(this->kept(this->query()), "nothing");
    const auto removed = this->keychain().remove(this->query());
    ASSERT_FALSE(removed);
    EXPECT_EQ(removed.error(), KeychainError::notFound);
}

TYPED_TEST_P(KeychainContract, EveryValueComesBackAsItWas) {
    using namespace std::string_literals;
    const std::string values[] = {"plain",
                                  "",
                                  "mật khẩu của tôi \U0001F511",
                                  std::string(200, 'x'),
                                  R"(quotes " ' ` and \ and $(x))",
                                  "  blanks and\nlines\t ",
                                  "\0\x01\xff bytes"s};
    for (const auto& value : values) {
        this->add(this->query(), value);
        EXPECT_EQ(this->kept(this->query()), value);
        EXPECT_TRUE(this->keychain().remove(this->query()));
        EXPECT_EQ(this->kept(this->query()), "nothing");
    }
}

TYPED_TEST_P(KeychainContract, RemovalAndAdditionReplace) {
    this->add(this->query(), "old");
    EXPECT_TRUE(this->keychain().remove(this->query()));
    this->add(this->query(), "new");
    EXPECT_EQ(this->kept(this->query()), "new");
}

TYPED_TEST_P(KeychainContract, ServicesAndAccountsAreApart) {
    const auto password = this->query();
    const auto passphrase = this->query("com.fernwick.keypassphrase");
    const auto other = this->query("com.fernwick.tunnelpassword", "6E4E3B26-21B1-4B27-8C0D-B6A1D3B4F9A2");
    this->add(password, "password");
    this->add(passphrase, "passphrase");
    this->add(other, "other");
    EXPECT_EQ(this->kept(password), "password");
    EXPECT_EQ(this->kept(passphrase), "passphrase");
    EXPECT_EQ(this->kept(other), "other");
    EXPECT_TRUE(this->keychain().remove(password));
    EXPECT_EQ(this->kept(password), "nothing");
    EXPECT_EQ(this->kept(passphrase), "passphrase");
    EXPECT_EQ(this->kept(other), "other");
}

REGISTER_TYPED_TEST_SUITE_P(KeychainContract, NothingIsFoundInAnEmptyOne, EveryValueComesBackAsItWas,
                            RemovalAndAdditionReplace, ServicesAndAccountsAreApart);

} // namespace fernwick::platform
