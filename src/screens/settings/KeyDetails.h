// What is known of the selected key: its file, and whether its passphrase is stored. The keychain is asked when
// a key is shown, and only for whether there is one. Threads: main thread only.
#pragma once

#include "screens/settings/SettingsContext.h"
#include "support/RelativeDate.h"

#include <QScrollArea>

#include <functional>
#include <optional>

class QLabel;
class QPushButton;

namespace fernwick {

class DetailRow;
class IconLine;

class KeyDetails final : public QScrollArea {
public:
    // `editPassphrase` opens the sheet for the key on show.
    KeyDetails(const SettingsContext& context, std::function<void()> editPassphrase, QWidget* parent);

    void showKey(const IdentityKey& key);

private:
    [[nodiscard]] QWidget* buildFacts(QWidget* parent);
    [[nodiscard]] QWidget* buildPassphrase(QWidget* parent);
    [[nodiscard]] QPushButton* addPassphraseButton(QWidget* row, const QString& text, const char* objectName,
                                                   std::function<void()> clicked);
    void showPassphrase(bool isStored);
    void removePassphrase();

    SettingsContext context_;
    std::function<void()> editPassphrase_;
    std::optional<IdentityKey> key_;
    support::RelativeDateFormatter dates_;
    DetailRow* name_ = nullptr;
    DetailRow* type_ = nullptr;
    DetailRow* path_ = nullptr;
    DetailRow* added_ = nullptr;
    struct Passphrase {
        IconLine* state = nullptr;
        QLabel* advice = nullptr;
        QPushButton* set = nullptr;
        QPushButton* change = nullptr;
        QPushButton* remove = nullptr;
    };
    Passphrase passphrase_;
};

} // namespace fernwick
