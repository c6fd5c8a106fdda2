// The sheet that takes a key's passphrase into the keychain. It blocks the window that it belongs to and
// nothing else. Threads: main thread only.
#pragma once

#include "catalogue/KeyManager.h"
#include "catalogue/KeychainStore.h"
#include "screens/theme/Theme.h"

#include <QDialog>

class QLabel;
class QToolButton;

namespace fernwick {

class IconLine;
class PassphraseField;

class PassphraseSheet final : public QDialog {
public:
    static constexpr int kWidth = 400;

    // Asks the keychain once whether there is a passphrase already. It is to be opened with open(), and goes
    // when it is closed. The references outlive it.
    PassphraseSheet(const Theme& theme, KeychainStore& keychain, KeyManager& keys, IdentityKey key,
                    QWidget* parent);

    [[nodiscard]] const IdentityKey& key() const { return key_; }

    // Stops the sheet and wipes what was typed.
    void done(int result) override;

private:
    [[nodiscard]] QWidget* buildHeading();
    [[nodiscard]] QWidget* buildNote();
    [[nodiscard]] QWidget* buildField();
    [[nodiscard]] QWidget* buildButtons();
    void togglePassphrase();
    void showError(const QString& message);
    void save();

    const Theme& theme_;
    KeychainStore& keychain_;
    KeyManager& keys_;
    IdentityKey key_;
    bool showPassphrase_ = false;
    PassphraseField* passphrase_ = nullptr;
    QToolButton* eye_ = nullptr;
    IconLine* error_ = nullptr;
};

} // namespace fernwick
