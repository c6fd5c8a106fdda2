// The sheet that takes a passphrase: what it stores, what it refuses, and that nothing of it is left behind.
#include "screens/settings/PassphraseSheet.h"

#include "SettingsBench.h"
#include "screens/settings/PassphraseField.h"

#include <QClipboard>
#include <QPointer>
#include <QPushButton>
#include <gtest/gtest.h>

namespace fernwick::tests {
namespace {

class Passphrase : public testing::Test {
protected:
    Passphrase() : key(bench.addKey("/k/id_rsa")) {
        bench.open(SettingsTab::identity);
        bench.chooseRow("keyTable", 0);
    }

    void open(const char* button = "setPassphraseButton") {
        bench.click(button);
        sheet = &bench.find<PassphraseSheet>("passphraseSheet");
    }

    PassphraseField& field() { return bench.find<PassphraseField>("passphraseField"); }

    SettingsBench bench;
    IdentityKey key;
    QPointer<PassphraseSheet> sheet;
};

TEST_F(Passphrase, ShowsWhoseItIs) {
    open();
    EXPECT_EQ(sheet->width(), 400);
    EXPECT_EQ(sheet->windowTitle(), QStringLiteral("Passphrase"));
    EXPECT_EQ(bench.text("passphraseKeyName"), "id_rsa");
    EXPECT_EQ(field().placeholderText(), QStringLiteral("Enter private key passphrase"));
    EXPECT_EQ(field().echoMode(), QLineEdit::Password);
    EXPECT_EQ(sheet->focusWidget(), &field());
    EXPECT_EQ(bench.look<QWidget>("passphraseNote"), nullptr);
    EXPECT_FALSE(bench.find<QLabel>("passphraseError").isVisible());
}

TEST_F(Passphrase, SaysThatThereIsOneAlready) {
    bench.savePassphrase(key, "old");
    bench.keys.update(key);
    open("changePassphraseButton");
    QStringList texts;
    for (const auto* label : bench.find<QWidget>("passphraseNote").findChildren<QLabel*>()) {
        texts.append(label->text());
    }
    EXPECT_EQ(texts, (QStringList{QStringLiteral("Passphrase stored in Keychain"),
                                  QStringLiteral("SSH will use it automatically when connecting.")}));
    EXPECT_EQ(field().text(), QString()); // the old one is not read out
}

TEST_F(Passphrase, AnEmptyOneIsRefused) {
    open();
    bench.secrets.calls.clear();
    bench.click("passphraseSaveButton");
    EXPECT_EQ(bench.text("passphraseError"), "Passphrase cannot be empty");
    EXPECT_TRUE(bench.find<QLabel>("passphraseError").isVisible());
    EXPECT_TRUE(sheet->isVisible());
    EXPECT_TRUE(bench.secrets.calls.empty());
    EXPECT_EQ(sheet->width(), 400);
}

TEST_F(Passphrase, ABlankIsOne) {
    open();
    QTest::keyClicks(&field(), QStringLiteral(" "));
    bench.click("passphraseSaveButton");
    EXPECT_EQ(bench.passphrase(key.id), " ");
    EXPECT_TRUE(sheet.isNull());
}

TEST_F(Passphrase, IsStoredUntrimmedAndTheDetailsFollow) {
    open();
    int updates = 0;
    const auto updated = bench.keys.changed.connect([&] { ++updates; });
    field().insert(QStringLiteral("  søt 🔑 "));
    QTest::keyClick(&field(), Qt::Key_Return);
    bench.settle();
    EXPECT_TRUE(sheet.isNull());
    EXPECT_EQ(bench.passphrase(key.id), "  søt 🔑 ");
    EXPECT_EQ(updates, 1);
    EXPECT_EQ(bench.text("passphraseState"), "Passphrase saved");
}

TEST_F(Passphrase, AnotherOneTakesThePlaceOfTheOld) {
    bench.savePassphrase(key, "old");
    bench.keys.update(key);
    open("changePassphraseButton");
    QTest::keyClicks(&field(), QStringLiteral("new"));
    bench.click("passphraseSaveButton");
    EXPECT_EQ(bench.passphrase(key.id), "new");
    EXPECT_EQ(bench.secrets.items.size(), 1U);
}

TEST_F(Passphrase, CancelAndEscapeStoreNothing) {
    open();
    QTest::keyClicks(&field(), QStringLiteral("x"));
    QTest::keyClick(sheet.data(), Qt::Key_Escape);
    bench.settle();
    EXPECT_TRUE(sheet.isNull());
    open();
    QTest::keyClicks(&field(), QStringLiteral("x"));
    auto& cancel = bench.find<QPushButton>("passphraseCancelButton");
    cancel.setFocus();
    QTest::keyClick(&cancel, Qt::Key_Return); // of the button that has the keyboard, not of the default one
    bench.settle();
    EXPECT_TRUE(sheet.isNull());
    EXPECT_EQ(bench.passphrase(key.id), "(none)");
}

TEST_F(Passphrase, AKeychainThatRefusesIsNotTold) {
    open();
    bench.secrets.addFailure = platform::KeychainError::locked;
    QTest::keyClicks(&field(), QStringLiteral("x"));
    bench.click("passphraseSaveButton");
    EXPECT_TRUE(sheet.isNull());
    EXPECT_EQ(bench.text("passphraseState"), "No passphrase");
}

TEST_F(Passphrase, TheEyeShowsAndHidesIt) {
    open();
    QTest::keyClicks(&field(), QStringLiteral("sesame"));
    auto* aloud = QAccessible::queryAccessibleInterface(&field());
    EXPECT_FALSE(aloud->text(QAccessible::Value).contains(QStringLiteral("sesame")));
    EXPECT_EQ(bench.aloud("showPassphraseButton"), "Show passphrase");
    bench.click("showPassphraseButton");
    EXPECT_EQ(field().echoMode(), QLineEdit::Normal);
    EXPECT_EQ(field().text(), QStringLiteral("sesame"));
    EXPECT_EQ(bench.aloud("showPassphraseButton"), "Hide passphrase");
    bench.click("showPassphraseButton");
    EXPECT_EQ(field().echoMode(), QLineEdit::Password);
}

TEST_F(Passphrase, IsNeitherCopiedNorPredictedWhileItIsMasked) {
    open();
    QTest::keyClicks(&field(), QStringLiteral("secret"));
    QApplication::clipboard()->setText(QStringLiteral("before"));
    field().selectAll();
    QTest::keyClick(&field(), Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text(), QStringLiteral("before"));
    EXPECT_TRUE(field().inputMethodHints().testFlag(Qt::ImhSensitiveData));
    EXPECT_TRUE(field().inputMethodHints().testFlag(Qt::ImhNoPredictiveText));
}

TEST_F(Passphrase, IsGoneFromTheFieldWhenTheSheetCloses) {
    open();
    QTest::keyClicks(&field(), QStringLiteral("secret"));
    const QPointer<PassphraseField> kept = &field();
    sheet->reject();
    ASSERT_FALSE(kept.isNull());
    EXPECT_EQ(kept->text(), QString());
    EXPECT_FALSE(kept->isUndoAvailable());
}

TEST_F(Passphrase, TabLeadsThroughTheSheet) {
    open();
    QStringList names;
    for (int step = 0; step < 4; ++step) {
        names.append(sheet->focusWidget()->objectName());
        QTest::keyClick(sheet->focusWidget(), Qt::Key_Tab);
    }
    EXPECT_EQ(names, QStringLiteral("passphraseField showPassphraseButton passphraseCancelButton "
                                    "passphraseSaveButton")
                         .split(QLatin1Char(' ')));
    EXPECT_EQ(bench.aloud("passphraseField"), "Passphrase");
}

} // namespace
} // namespace fernwick::tests
