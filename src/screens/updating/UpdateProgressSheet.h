// The notice that an update is being fetched. Nobody can close it but the application: there is no cancel.
// Threads: main thread only.
#pragma once

#include "screens/theme/AlertSheet.h"
#include "updating/UpdateScreens.h"

namespace fernwick {

class UpdateProgressSheet final : public AlertSheet {
public:
    static constexpr QSize kBarSize{280, 20};

    UpdateProgressSheet(const Theme& theme, const UpdateProgress& progress, QWidget* parent);

    // Escape and the window's close button come here, and change nothing.
    void reject() override {}
};

} // namespace fernwick
