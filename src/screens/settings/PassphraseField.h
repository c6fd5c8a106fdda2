// A field for a secret that is masked until it is asked to show it, and that leaves nothing behind.
// Threads: main thread only.
#pragma once

#include "screens/theme/Theme.h"
#include "support/Secret.h"

#include <QLineEdit>

namespace fernwick {

class PassphraseField final : public QLineEdit {
public:
    PassphraseField(const Theme& theme, QWidget* parent);
    PassphraseField(const PassphraseField&) = delete;
    PassphraseField& operator=(const PassphraseField&) = delete;
    ~PassphraseField() override { wipe(); }

    void setMasked(bool masked) { setEchoMode(masked ? QLineEdit::Password : QLineEdit::Normal); }

    // What was typed, to the blank.
    [[nodiscard]] support::Secret secret() const;

    // Empties the field and overwrites what it held.
    void wipe();
};

} // namespace fernwick
