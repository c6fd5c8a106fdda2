// The tab "Identity": the private keys that the application knows, and their passphrases.
// Threads: main thread only.
#pragma once

#include "screens/settings/SettingsContext.h"
#include "support/Weak.h"

#include <QWidget>

#include <optional>
#include <string>
#include <vector>

class QPushButton;
class QStackedWidget;

namespace fernwick {

class KeyDetails;
class KeyTable;
class ProxyRuleEmptyState;

class IdentitySettingsView final : public QWidget {
public:
    IdentitySettingsView(const SettingsContext& context, QWidget* parent);

    // The key that was selected; it need not be in the list.
    [[nodiscard]] const std::optional<support::Uuid>& selectedKeyID() const { return selectedKeyID_; }

protected:
    void showEvent(QShowEvent* event) override;

private:
    [[nodiscard]] QWidget* buildList();
    [[nodiscard]] QWidget* buildDetails();
    [[nodiscard]] const IdentityKey* selectedKey() const;
    void select(std::optional<support::Uuid> id);
    void refresh();
    void showDetails();
    void askForFiles();
    void importFiles(const std::vector<std::string>& paths);
    void removeSelected();
    void showPassphraseSheet();

    SettingsContext context_;
    std::optional<support::Uuid> selectedKeyID_;
    bool asking_ = false;    // the panel for files is open
    bool importing_ = false; // every file changes the list; it is shown once
    KeyTable* table_ = nullptr;
    QPushButton* remove_ = nullptr;
    QStackedWidget* right_ = nullptr;
    KeyDetails* details_ = nullptr;
    ProxyRuleEmptyState* empty_ = nullptr;
    support::Subscription keysChanged_;
    support::WeakSource<IdentitySettingsView> self_;
};

} // namespace fernwick
