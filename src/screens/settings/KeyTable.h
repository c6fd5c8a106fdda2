// The table of identity keys, in a frame of its own. The keyboard goes from row to row, and on to the next
// control by the tab key. Threads: main thread only.
#pragma once

#include "screens/settings/KeyTableModel.h"
#include "screens/theme/Theme.h"

#include <QTableView>

#include <functional>
#include <optional>

namespace fernwick {

class KeyTable final : public QTableView {
public:
    static constexpr int kMinimumWidth = 280;
    static constexpr int kMinimumHeight = 200;

    struct Callbacks {
        std::function<void(std::optional<support::Uuid>)> selected; // by the user
        std::function<void()> remove;                               // the selected key
    };

    KeyTable(const Theme& theme, KeyTableModel& model, Callbacks callbacks, QWidget* parent);

    // Shows these keys with that one selected, if it is among them. Does not call back.
    void showKeys(const std::vector<IdentityKey>& keys, const std::optional<support::Uuid>& selected);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;

private:
    void select(const std::optional<support::Uuid>& id);

    KeyTableModel& keys_;
    Callbacks callbacks_;
    bool showing_ = false;
};

} // namespace fernwick
