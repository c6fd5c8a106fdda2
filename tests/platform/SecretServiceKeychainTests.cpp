#include "KeychainContract.h"
#include "KeyringHarness.h"

#include <chrono>

namespace fernwick::platform {

namespace {

class SecretServiceKeychainTest : public testing::Test {
protected:
    static constexpr std::chrono::seconds kBound{1}; // of every call, whatever the service does

    const KeychainQuery query_{.service = "com.fernwick.tunnelpassword", .account = "ACCOUNT"};

    // Fails when what runs while it lives takes too long.
    class Bounded {
    public:
        Bounded() = default;
        Bounded(const Bounded&) = delete;
        Bounded& operator=(const Bounded&) = delete;
        ~Bounded() { EXPECT_LT(std::chrono::steady_clock::now() - start_, kBound); }

    private:
        std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
    };

    std::expected<std::string, KeychainError> copy() { return copy(query_); }
    std::expected<std::string, KeychainError> copy(const KeychainQuery& query) {
        const Bounded bounded;
        const auto value = harness_.keychain().copyMatching(query);
        return value ? std::expected<std::string, KeychainError>(value->text())
                     : std::unexpected(value.error());
    }
    std::expected<void, KeychainError> remove() {
        const Bounded bounded;
        return harness_.keychain().remove(query_);
    }
    std::expected<void, KeychainError> add(std::string_view value) {
        const Bounded bounded;
        const KeychainItem item{.identity = query_, .label = "Fernwick: label"};
        return harness_.keychain().add(item, support::Secret(value));
    }

    void expectAllFail(KeychainError error) {
        EXPECT_EQ(copy(), std::unexpected(error));
        EXPECT_EQ(add("more").error(), error);
    }

    [[nodiscard]] std::string listed() const {
        return harness_.byOther({"list", query_.service, query_.account});
    }

    KeyringHarness harness_;
};

std::string standardError() {
    return testing::internal::GetCapturedStderr();
}

std::string toldOf(const std::string& reason) {
    return "Fernwick: " + reason + "; passwords and passphrases are neither read nor saved\n";
}

} // namespace

INSTANTIATE_TYPED_TEST_SUITE_P(SecretService, KeychainContract, KeyringHarness);

TEST_F(SecretServiceKeychainTest, OtherProgramsSeeTheItem) {
    ASSERT_TRUE(add("secret"));
    EXPECT_EQ(listed(), "Fernwick: label|com.fernwick.Fernwick|secret\n");
}

TEST_F(SecretServiceKeychainTest, AdditionReplacesAnItemOfTheSameIdentity) {
    ASSERT_TRUE(add("old"));
    ASSERT_TRUE(add("new"));
    EXPECT_EQ(listed(), "Fernwick: label|com.fernwick.Fernwick|new\n");
}

TEST_F(SecretServiceKeychainTest, RemovalTakesAllItemsOfTheIdentity) {
    for (const auto* value : {"one", "two"}) {
        static_cast<void>(harness_.byOther({"create", query_.service, query_.account, value}));
    }
    ASSERT_TRUE(listed().contains("|one\n"));
    ASSERT_TRUE(listed().contains("|two\n"));
    EXPECT_TRUE(copy());
    EXPECT_TRUE(remove());
    EXPECT_EQ(listed(), "");
}

TEST_F(SecretServiceKeychainTest, ItemsAreThereForTheNextSession) {
    ASSERT_TRUE(add("kept"));
    harness_.startUnlocked();
    EXPECT_EQ(copy(), "kept");
}

TEST_F(SecretServiceKeychainTest, LockedKeyringFailsAtOnceAndWorksWhenUnlocked) {
    ASSERT_TRUE(add("secret"));
    harness_.lock();
    testing::internal::CaptureStderr();
    expectAllFail(KeychainError::locked);
    expectAllFail(KeychainError::locked);
    EXPECT_EQ(remove().error(), KeychainError::locked);
    EXPECT_EQ(standardError(), toldOf("the keyring is locked"));
    harness_.startUnlocked();
    EXPECT_EQ(copy(), "secret");
    EXPECT_TRUE(add("newer"));
    EXPECT_EQ(copy(), "newer");
}

TEST_F(SecretServiceKeychainTest, UnknownItemOfALockedKeyringIsNotFound) {
    ASSERT_TRUE(add("secret"));
    harness_.lock();
    const KeychainQuery other{.service = query_.service, .account = "OTHER"};
    EXPECT_EQ(copy(other), std::unexpected(KeychainError::notFound));
}

TEST_F(SecretServiceKeychainTest, WithADisplayThePersonIsAskedOnceToUnlock) {
    harness_.environment()["DISPLAY"] = ":0";
    ASSERT_TRUE(add("secret"));
    TestProgram monitor("/usr/bin/dbus-monitor", {"--address", harness_.bus().address(), "member=Prompt"});
    ASSERT_TRUE(fakes::waitUntil([&] { return monitor.output().contains("NameLost"); }));
    const auto prompts = [&] {
        int count = 0;
        for (auto at = monitor.output().find("member=Prompt"); at != std::string::npos;
             at = monitor.output().find("member=Prompt", at + 1)) {
            ++count;
        }
        return count;
    };
    harness_.lock();
    EXPECT_EQ(copy(), std::unexpected(KeychainError::locked));
    EXPECT_TRUE(fakes::waitUntil([&] { return prompts() == 1; }));
    expectAllFail(KeychainError::locked);
    EXPECT_TRUE(fakes::staysTrue([&] { return prompts() == 1; }));
    harness_.startUnlocked();
    EXPECT_EQ(copy(), "secret");
    harness_.lock();
    expectAllFail(KeychainError::locked);
    EXPECT_TRUE(fakes::waitUntil([&] { return prompts() == 2; }));
}

TEST_F(SecretServiceKeychainTest, KeyringWithoutACollectionCannotKeepAnything) {
    harness_.end();
    std::filesystem::remove_all(harness_.home() / ".local");
    harness_.startLocked();
    testing::internal::CaptureStderr();
    EXPECT_EQ(add("secret").error(), KeychainError::unavailable);
    EXPECT_EQ(copy(), std::unexpected(KeychainError::notFound));
    EXPECT_EQ(standardError(), toldOf("the keyring has no default collection"));
}

TEST_F(SecretServiceKeychainTest, WithoutABusEverythingFailsAndALaterOneIsFound) {
    harness_.useBus("unix:path=" + (harness_.home() / "bus"));
    testing::internal::CaptureStderr();
    expectAllFail(KeychainError::unavailable);
    EXPECT_EQ(standardError(), toldOf("there is no keyring service"));
    std::filesystem::create_symlink(harness_.bus().socket(), harness_.home() / "bus");
    EXPECT_TRUE(add("secret"));
    EXPECT_EQ(copy(), "secret");
}

TEST_F(SecretServiceKeychainTest, NoBusIsStartedWhereThereIsNone) {
    harness_.useBus("");
    harness_.environment()["DISPLAY"] = ":0";
    expectAllFail(KeychainError::unavailable);
}

TEST_F(SecretServiceKeychainTest, BusThatEndsTakesNeitherTheProcessNorTheNextCallsWithIt) {
    ASSERT_TRUE(add("secret"));
    harness_.endBus();
    expectAllFail(KeychainError::unavailable);
}

TEST_F(SecretServiceKeychainTest, WithoutAServiceEverythingFailsAndALaterOneIsFound) {
    harness_.end();
    testing::internal::CaptureStderr();
    expectAllFail(KeychainError::unavailable);
    expectAllFail(KeychainError::unavailable);
    EXPECT_EQ(standardError(), toldOf("there is no keyring service"));
    harness_.startUnlocked();
    EXPECT_TRUE(add("secret"));
    EXPECT_EQ(copy(), "secret");
}

TEST_F(SecretServiceKeychainTest, StuckServiceHoldsUpOneCallAndTheOthersFailAtOnce) {
    ASSERT_TRUE(add("secret"));
    harness_.stop();
    testing::internal::CaptureStderr();
    EXPECT_EQ(copy(), std::unexpected(KeychainError::unavailable));
    const auto start = std::chrono::steady_clock::now();
    for (int number = 0; number < 20; ++number) {
        EXPECT_EQ(copy(), std::unexpected(KeychainError::unavailable));
    }
    EXPECT_LT(std::chrono::steady_clock::now() - start, SecretServiceKeychain::kAnswerLimit);
    EXPECT_EQ(standardError(), toldOf("the keyring service gives no answer"));
    harness_.resume();
    EXPECT_TRUE(fakes::waitUntil([&] { return copy() == "secret"; }));
}

TEST_F(SecretServiceKeychainTest, ChangesThatWereHeldUpAreMadeInOrderLater) {
    ASSERT_TRUE(add("old"));
    harness_.stop();
    EXPECT_EQ(add("one").error(), KeychainError::unavailable);
    EXPECT_EQ(remove().error(), KeychainError::unavailable);
    EXPECT_EQ(add("two").error(), KeychainError::unavailable);
    harness_.resume();
    EXPECT_TRUE(fakes::waitUntil([&] { return copy() == "two"; }));
    EXPECT_EQ(listed(), "Fernwick: label|com.fernwick.Fernwick|two\n");
}

TEST_F(SecretServiceKeychainTest, ServiceThatIsStuckAtTheFirstCallIsFoundLater) {
    harness_.stop();
    EXPECT_EQ(add("secret").error(), KeychainError::unavailable);
    harness_.resume();
    EXPECT_TRUE(fakes::waitUntil([&] { return copy() == "secret"; }));
}

TEST_F(SecretServiceKeychainTest, EndWaitsForNoStuckService) {
    ASSERT_TRUE(add("secret"));
    harness_.stop();
    EXPECT_FALSE(copy());
    const Bounded bounded;
    harness_.endKeychain();
}

} // namespace fernwick::platform
