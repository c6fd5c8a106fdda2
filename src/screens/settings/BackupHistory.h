// The card "Backup History": how many backups there are, and the list of them to unfold.
// Threads: main thread only.
#pragma once

#include "screens/settings/SyncForm.h"
#include "support/Signal.h"

namespace fernwick {

class BackupListView;
class DisclosureButton;

class BackupHistory final : public SyncForm {
public:
    // `remove` is called with the backup that the user wants deleted; asking first is the caller's.
    BackupHistory(SyncParts parts, std::function<void(const BackupEntry&)> remove, QWidget* parent);

    // Whether the list is unfolded.
    [[nodiscard]] bool showBackupList() const;

private:
    void refresh();
    void restore(const BackupEntry& entry);

    DisclosureButton* disclosure_;
    BackupListView* list_;
    QLabel* empty_;
    bool restoring_ = false;
    support::Subscription changed_;
    support::WeakSource<BackupHistory> self_{*this};
};

} // namespace fernwick
