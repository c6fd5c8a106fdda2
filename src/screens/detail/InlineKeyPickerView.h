// Which identity key the tunnel uses: a menu of the known keys, a button that makes a key file known, and one
// that goes back to none. Threads: main thread only.
#pragma once

#include "catalogue/KeyManager.h"
#include "screens/detail/TunnelBinding.h"
#include "screens/main/MainWindowContext.h"
#include "support/Weak.h"

#include <QWidget>

#include <optional>
#include <string>

class QToolButton;

namespace fernwick {

class ChoiceMenu;
class IconView;

class InlineKeyPickerView final : public QWidget {
public:
    // How long a mark stands beside a key that was just added.
    static constexpr platform::Duration kJustAddedDelay{1500};

    // The binding outlives the picker.
    InlineKeyPickerView(const MainWindowContext& context, TunnelBinding& binding, QWidget* parent);

    // Shows the key of the tunnel on show.
    void refresh();

    // The menu, which a label can name.
    [[nodiscard]] QWidget* menu() const;

private:
    void layOut();
    void rebuildMenu();
    void choose(int choice);
    void askForFile();
    void fileChosen(const std::string& path, const support::Uuid& tunnelID);
    void setJustAdded(std::optional<support::Uuid> id);

    MainWindowContext context_;
    TunnelBinding& binding_;
    std::optional<support::Uuid> justAdded_;
    bool asking_ = false;
    ChoiceMenu* menu_;
    IconView* mark_;
    QToolButton* deselect_;
    QPushButton* add_;
    QWidget* hint_;
    support::Subscription keysChanged_;
    support::WeakSource<InlineKeyPickerView> self_;
};

} // namespace fernwick
