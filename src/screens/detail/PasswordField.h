// The masked field of a tunnel's password. It reads the keychain only when it comes on the screen or another
// tunnel is chosen meanwhile, stores every change, and holds nothing while it cannot be seen.
// Threads: main thread only.
#pragma once

#include "catalogue/KeychainStore.h"
#include "screens/theme/Theme.h"

#include <QLineEdit>

namespace fernwick {

class PasswordField final : public QLineEdit {
public:
    // The keychain outlives the field.
    PasswordField(const Theme& theme, KeychainStore& keychain, QWidget* parent);

    // Shows that tunnel's password. Nothing happens if it is the one on show.
    void setTunnel(const support::Uuid& tunnelID);

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void load();
    void store();
    // Puts the text there without storing it. No undo leads back before it.
    void setSilently(const QString& text);

    KeychainStore& keychain_;
    support::Uuid tunnelID_;
    bool showing_ = false;
};

} // namespace fernwick
