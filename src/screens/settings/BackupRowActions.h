// The buttons of one row of the list of backups.
// Threads: main thread only.
#pragma once

#include "screens/settings/BackupListView.h"

class QPushButton;
class QToolButton;

namespace fernwick {

class BackupRowActions final : public QWidget {
public:
    struct Callbacks {
        std::function<void(const support::Uuid&)> restore;
        std::function<void(const support::Uuid&)> remove;
    };

    BackupRowActions(const Theme& theme, Callbacks callbacks, QWidget* parent);

    // The row that the buttons are for.
    void showRow(const BackupRow& row);
    [[nodiscard]] const support::Uuid& id() const { return id_; }

    // Whether the tab key stops here.
    void setReachable(bool reachable);

    [[nodiscard]] bool hasKeyboard() const;

private:
    support::Uuid id_;
    QString name_;
    QPushButton* restore_;
    QToolButton* remove_;
};

} // namespace fernwick
