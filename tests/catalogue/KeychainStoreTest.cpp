#include "catalogue/KeychainStore.h"

#include "support/FakeKeychain.h"

#include <gmock/gmock.h>

namespace fernwick {
namespace {

using support::Secret;
using support::Uuid;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

const std::string kAccount = "0A1B2C3D-4E5F-6071-8293-A4B5C6D7E8F9";

struct KeychainStoreTest : testing::Test {
    fakes::FakeKeychain keychain;
    KeychainStore store{keychain};
    Uuid id = *Uuid::parse(kAccount);
};

TEST_F(KeychainStoreTest, PasswordIsStoredUnderItsServiceAndTheUpperCaseId) {
    store.saveTunnelPassword(Secret("hunter2"), id);
    ASSERT_THAT(keychain.items, SizeIs(1));
    const auto& [item, value] = keychain.items.front();
    EXPECT_EQ(item.identity.service, "com.fernwick.tunnelpassword");
    EXPECT_EQ(item.identity.account, kAccount);
    EXPECT_EQ(item.identity.itemClass, platform::KeychainClass::genericPassword);
    EXPECT_EQ(item.accessibility, platform::KeychainAccessibility::afterFirstUnlock);
    EXPECT_EQ(value, "hunter2");
    EXPECT_EQ(store.loadTunnelPassword(id)->text(), "hunter2");
}

TEST_F(KeychainStoreTest, PassphraseIsStoredUnderItsOwnService) {
    store.saveKeyPassphrase(Secret("passphrase"), id);
    ASSERT_THAT(keychain.items, SizeIs(1));
    EXPECT_EQ(keychain.items.front().item.identity.service, "com.fernwick.keypassphrase");
    EXPECT_EQ(keychain.items.front().item.identity.account, kAccount);
    EXPECT_EQ(store.loadKeyPassphrase(id)->text(), "passphrase");
}

TEST_F(KeychainStoreTest, EmptyPasswordRemovesTheItem) {
    store.saveTunnelPassword(Secret("secret"), id);
    store.saveTunnelPassword(Secret(), id);
    EXPECT_THAT(keychain.items, IsEmpty());
    EXPECT_FALSE(store.loadTunnelPassword(id).has_value());
}

TEST_F(KeychainStoreTest, SavingTwiceLeavesOneItemWithTheSecondValue) {
    store.saveTunnelPassword(Secret("first"), id);
    store.saveTunnelPassword(Secret("second"), id);
    ASSERT_THAT(keychain.items, SizeIs(1));
    EXPECT_EQ(keychain.items.front().value, "second");
}

TEST_F(KeychainStoreTest, SaveRemovesBeforeItAdds) {
    store.saveKeyPassphrase(Secret("x"), id);
    EXPECT_THAT(keychain.calls, ElementsAre("remove com.fernwick.keypassphrase " + kAccount,
                                            "add com.fernwick.keypassphrase " + kAccount));
}

TEST_F(KeychainStoreTest, OneIdUnderTheTwoServicesNamesTwoItems) {
    store.saveTunnelPassword(Secret("password"), id);
    store.saveKeyPassphrase(Secret("passphrase"), id);
    EXPECT_THAT(keychain.items, SizeIs(2));
    EXPECT_EQ(store.loadTunnelPassword(id)->text(), "password");
    EXPECT_EQ(store.loadKeyPassphrase(id)->text(), "passphrase");
    store.deleteKeyPassphrase(id);
    EXPECT_FALSE(store.loadKeyPassphrase(id).has_value());
    EXPECT_EQ(store.loadTunnelPassword(id)->text(), "password");
}

TEST_F(KeychainStoreTest, AnotherIdHasNoSecret) {
    store.saveTunnelPassword(Secret("password"), id);
    EXPECT_FALSE(store.loadTunnelPassword(Uuid::random()).has_value());
}

TEST_F(KeychainStoreTest, StoredValueThatIsEmptyOrNoUtf8CountsAsNone) {
    for (const std::string value : {"", "\xff\xfe", "abc\xc3"}) {
        keychain.items = {
            {{.identity = {.service = "com.fernwick.tunnelpassword", .account = kAccount}}, value}};
        EXPECT_FALSE(store.loadTunnelPassword(id).has_value());
    }
}

TEST_F(KeychainStoreTest, EveryFailureOfALoadCountsAsNone) {
    store.saveTunnelPassword(Secret("password"), id);
    for (const auto error : {platform::KeychainError::notFound, platform::KeychainError::locked,
                             platform::KeychainError::unavailable, platform::KeychainError::refused}) {
        keychain.failure = error;
        EXPECT_FALSE(store.loadTunnelPassword(id).has_value());
    }
}

TEST_F(KeychainStoreTest, FailedAdditionLosesTheOldSecret) {
    store.saveTunnelPassword(Secret("old"), id);
    keychain.addFailure = platform::KeychainError::refused;
    store.saveTunnelPassword(Secret("new"), id);
    EXPECT_FALSE(store.loadTunnelPassword(id).has_value());
}

TEST_F(KeychainStoreTest, NothingIsKeptBetweenCalls) {
    store.saveTunnelPassword(Secret("one"), id);
    keychain.items.front().value = "changed by another program";
    EXPECT_EQ(store.loadTunnelPassword(id)->text(), "changed by another program");
}

TEST_F(KeychainStoreTest, LabelNamesTheOwnerOrElseItsId) {
    KeychainStore named(
        keychain, [](const Uuid&) { return std::string("Production DB"); },
        [](const Uuid&) { return std::string("id_ed25519"); });
    named.saveTunnelPassword(Secret("x"), id);
    named.saveKeyPassphrase(Secret("x"), id);
    store.saveTunnelPassword(Secret("x"), Uuid::random());
    EXPECT_EQ(keychain.items[0].item.label, "Fernwick: password of Production DB");
    EXPECT_EQ(keychain.items[1].item.label, "Fernwick: passphrase of id_ed25519");
    EXPECT_EQ(keychain.items[2].item.label, "Fernwick: password of " + keychain.items[2].item.identity.account);
}

} // namespace
} // namespace fernwick
