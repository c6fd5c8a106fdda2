// The card "Export / Import": the catalogue to a file and back, and the profiles of the sister application.
// Threads: main thread only.
#pragma once

#include "screens/settings/SyncForm.h"

namespace fernwick {

class ExportImportForm final : public SyncForm {
public:
    ExportImportForm(SyncParts parts, QWidget* parent);

private:
    void exportTunnels();
    void importTunnels();
    void importProfiles();

    QPushButton* export_ = nullptr;
    QPushButton* import_ = nullptr;
    QPushButton* profiles_ = nullptr;
};

} // namespace fernwick
