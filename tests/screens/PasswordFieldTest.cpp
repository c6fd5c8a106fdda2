// The masked field: when it asks the keychain, and when it stores.
#include "screens/detail/PasswordField.h"

#include "DetailBench.h"
#include "screens/main/TunnelRules.h"
#include "screens/theme/ChoiceMenu.h"

#include <QClipboard>

namespace fernwick::tests {
namespace {

class Password : public DetailTest {
protected:
    Password() { bench.secrets.calls.clear(); }

    PasswordField& password() { return bench.find<PasswordField>("passwordField"); }
    void usePassword() { bench.find<ChoiceMenu>("authMethodMenu").setCurrentIndex(0); }

    Tunnel addWithPassword(const char* name, const char* secret) {
        Tunnel other = tunnelNamed(name);
        other.authMethod = AuthMethod::password;
        bench.keychain.saveTunnelPassword(support::Secret(secret), other.id);
        bench.add(other);
        bench.secrets.calls.clear();
        return other;
    }

    std::string kept(const support::Uuid& id) {
        const auto secret = bench.keychain.loadTunnelPassword(id);
        return secret ? std::string(secret->text()) : "(none)";
    }

    [[nodiscard]] long reads() const {
        return std::ranges::count_if(bench.secrets.calls,
                                     [](const auto& call) { return call.starts_with("copyMatching"); });
    }
};

TEST_F(Password, IsNotReadWhileItIsNotShown) {
    EXPECT_TRUE(bench.secrets.calls.empty());
    edit([](Tunnel& changed) { changed.host = "x"; });
    turnTo("advancedTabButton");
    edit([](Tunnel& changed) { changed.authMethod = AuthMethod::password; });
    EXPECT_TRUE(bench.secrets.calls.empty());
    turnTo("configurationTabButton");
    EXPECT_EQ(reads(), 1);
}

TEST_F(Password, IsReadOnceWhenItIsShown) {
    bench.keychain.saveTunnelPassword(support::Secret("søt 🔑"), tunnel.id);
    bench.secrets.calls.clear();
    usePassword();
    bench.settle();
    EXPECT_EQ(password().text(), QStringLiteral("søt 🔑"));
    EXPECT_EQ(password().echoMode(), QLineEdit::Password);
    EXPECT_EQ(password().accessibleName(), QStringLiteral("SSH Password"));
    edit([](Tunnel& changed) { changed.name = "other"; });
    EXPECT_EQ(bench.secrets.calls.size(), 1U); // and nothing was stored
}

TEST_F(Password, EachChangeIsStored) {
    usePassword();
    QTest::keyClicks(&password(), QStringLiteral("ab"));
    EXPECT_EQ(kept(tunnel.id), "ab");
    password().backspace();
    EXPECT_EQ(kept(tunnel.id), "a");
    password().clear();
    EXPECT_EQ(kept(tunnel.id), "(none)");
    EXPECT_EQ(reads(), 4); // one by the field, three by this test
}

TEST_F(Password, IsNeverInTheCatalogue) {
    usePassword();
    QTest::keyClicks(&password(), QStringLiteral("sesame"));
    bench.settle();
    const auto data = bench.defaults.data(TunnelStore::kDefaultsKey);
    ASSERT_TRUE(data);
    EXPECT_EQ(data->bytes().find("sesame"), std::string_view::npos);
}

TEST_F(Password, AnotherTunnelShowsItsOwn) {
    const auto other = addWithPassword("other", "second");
    const auto third = addWithPassword("third", "second");
    usePassword();
    QTest::keyClicks(&password(), QStringLiteral("first"));
    bench.secrets.calls.clear();
    choose(1);
    EXPECT_EQ(password().text(), QStringLiteral("second"));
    EXPECT_FALSE(password().isUndoAvailable());
    EXPECT_EQ(reads(), 1);
    choose(2);
    EXPECT_EQ(reads(), 2); // though it is the same
    EXPECT_EQ(kept(tunnel.id), "first");
    EXPECT_EQ(kept(other.id), "second");
    EXPECT_EQ(kept(third.id), "second");
}

TEST_F(Password, HoldsNothingWhileItIsHidden) {
    usePassword();
    QTest::keyClicks(&password(), QStringLiteral("first"));
    turnTo("logsTabButton");
    EXPECT_EQ(password().text(), QString());
    EXPECT_EQ(kept(tunnel.id), "first");
    turnTo("configurationTabButton");
    EXPECT_EQ(password().text(), QStringLiteral("first"));
    edit([](Tunnel& changed) { changed.authMethod = AuthMethod::agent; });
    EXPECT_EQ(password().text(), QString());
    EXPECT_EQ(kept(tunnel.id), "first");
}

TEST_F(Password, ATunnelWithoutPasswordIsNotAskedFor) {
    addWithPassword("other", "second");
    choose(1);
    EXPECT_EQ(reads(), 1);
    choose(0);
    EXPECT_EQ(reads(), 1);
    EXPECT_FALSE(password().isVisible());
    choose(1);
    EXPECT_EQ(reads(), 2);
    EXPECT_EQ(password().text(), QStringLiteral("second"));
}

TEST_F(Password, ADuplicateHasNone) {
    usePassword();
    QTest::keyClicks(&password(), QStringLiteral("first"));
    const auto copy = bench.add(duplicateOf(stored()));
    choose(1);
    EXPECT_TRUE(password().isVisible());
    EXPECT_EQ(password().text(), QString());
    EXPECT_EQ(kept(copy.id), "(none)");
    EXPECT_EQ(kept(tunnel.id), "first");
}

TEST_F(Password, AKeychainThatFailsGivesAnEmptyField) {
    bench.secrets.failure = platform::KeychainError::locked;
    usePassword();
    EXPECT_EQ(password().text(), QString());
    QTest::keyClicks(&password(), QStringLiteral("x"));
    bench.settle();
    EXPECT_EQ(password().text(), QStringLiteral("x"));
}

TEST_F(Password, IsNeitherCopiedNorPredicted) {
    usePassword();
    QTest::keyClicks(&password(), QStringLiteral("secret"));
    QApplication::clipboard()->setText(QStringLiteral("before"));
    password().selectAll();
    QTest::keyClick(&password(), Qt::Key_C, Qt::ControlModifier);
    QTest::keyClick(&password(), Qt::Key_X, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text(), QStringLiteral("before"));
    const auto hints = password().inputMethodHints();
    EXPECT_TRUE(hints.testFlag(Qt::ImhHiddenText));
    EXPECT_TRUE(hints.testFlag(Qt::ImhSensitiveData));
    EXPECT_TRUE(hints.testFlag(Qt::ImhNoPredictiveText));
}

} // namespace
} // namespace fernwick::tests
