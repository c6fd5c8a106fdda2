// The card "Automatic Backup": whether, how often and where backups are made, how many are kept, and a button
// to make one now. Threads: main thread only.
#pragma once

#include "screens/settings/SyncForm.h"
#include "support/CalendarDate.h"
#include "support/Signal.h"

#include <cstdint>
#include <vector>

namespace fernwick {

class ChoiceMenu;
class CountField;
class ElidedLabel;

class AutomaticBackupForm final : public SyncForm {
public:
    AutomaticBackupForm(SyncParts parts, QWidget* parent);

private:
    [[nodiscard]] QWidget* buildInterval();
    [[nodiscard]] QWidget* buildFolder();
    [[nodiscard]] QWidget* buildCount();
    [[nodiscard]] QWidget* buildLast();
    // A row of a label, what it names, and what follows.
    [[nodiscard]] QWidget* labelled(const QString& label, QWidget* control, QWidget* after);
    void refresh();
    void showInterval(std::int64_t hours);
    void chooseInterval(int choice);
    void chooseFolder();

    Switch* enabled_ = nullptr;
    ChoiceMenu* interval_ = nullptr;
    std::vector<std::int64_t> intervals_; // that the menu offers, in hours
    ElidedLabel* folder_ = nullptr;
    QPushButton* change_ = nullptr;
    CountField* count_ = nullptr;
    QLabel* last_ = nullptr;
    QPushButton* backup_ = nullptr;
    support::CalendarDateFormatter dates_;
    support::Subscription changed_;
};

} // namespace fernwick
