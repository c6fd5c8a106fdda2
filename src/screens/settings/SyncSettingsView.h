// The tab "Sync" of the settings window: what leaves this machine and comes to it. The manager is asked for
// when the page is first on the screen, and not before. Threads: main thread only.
#pragma once

#include "screens/detail/FormPage.h"
#include "screens/settings/SyncForm.h"
#include "screens/settings/SyncPageContext.h"
#include "screens/settings/SyncSection.h"
#include "support/Weak.h"

#include <deque>
#include <optional>

namespace fernwick {

class SyncSettingsView final : public FormPage {
public:
    SyncSettingsView(SyncPageContext context, QWidget* parent);

protected:
    // Lists the backups and asks for the cloud's status anew.
    void showEvent(QShowEvent* event) override;

private:
    void addSections();
    void add(const SyncSection& section);
    void showDeleteConfirm(const BackupEntry& entry);
    void deleteConfirmed();
    // Shows the alert, behind those that are still to be answered.
    void showAlert(SyncAlert alert);
    void openAlert();

    SyncPageContext context_;
    SyncManager* sync_ = nullptr;              // once the page was on the screen
    std::optional<BackupEntry> entryToDelete_; // while the user is asked
    std::deque<SyncAlert> alerts_;             // the first is on the screen
    support::WeakSource<SyncSettingsView> self_{*this};
};

} // namespace fernwick
