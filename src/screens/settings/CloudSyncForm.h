// The card "iCloud Sync": whether the catalogue is shared, where the shared copy stands, and buttons to send
// and to fetch it now. Threads: main thread only.
#pragma once

#include "screens/settings/SyncForm.h"
#include "support/Signal.h"

namespace fernwick {

class IconLine;
class RelativeDateLabel;

class CloudSyncForm final : public SyncForm {
public:
    CloudSyncForm(SyncParts parts, QWidget* parent);

private:
    [[nodiscard]] QWidget* buildStatus();
    [[nodiscard]] QWidget* buildFolder();
    void refresh();
    void push();
    void pull();
    // Lets go of the button, and shows one alert or the other.
    [[nodiscard]] CloudSync::Completion answer(const HeldButton& button, SyncAlert onSuccess,
                                               SyncAlert onFailure) const;

    Switch* enabled_ = nullptr;
    IconLine* status_ = nullptr;
    RelativeDateLabel* lastSync_ = nullptr;
    QPushButton* push_ = nullptr;
    QPushButton* pull_ = nullptr;
    support::Subscription changed_;
};

} // namespace fernwick
