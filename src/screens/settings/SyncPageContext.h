// What the page of exports, backups and the cloud needs of the rest of the application.
#pragma once

#include "platform/Clock.h"
#include "platform/Dialogs.h"
#include "platform/Dispatch.h"
#include "platform/HostEnvironment.h"
#include "portability/FernwickSSHImporter.h"
#include "portability/ImportMerge.h"
#include "portability/SyncManager.h"
#include "screens/theme/Theme.h"

#include <functional>
#include <string>

namespace fernwick {

// All that is referred to outlives the page, and so does the manager.
struct SyncPageContext {
    const Theme& theme;

    // Gives the manager, and makes it when it is asked for the first time. The page asks once, when it is first
    // on the screen: a manager that is never asked for never starts what it starts.
    std::function<SyncManager&()> sync;

    const FernwickSSHImporter& importer;
    ImportMerge& merge; // into the tunnel store that the windows show
    platform::Dialogs& dialogs;
    platform::Dispatch& dispatch;
    const platform::Clock& clock;
    const platform::HostEnvironment& host;

    // Where the cloud is a folder that the person syncs: its absolute path, which the page shows. Empty where
    // the cloud is the system's.
    std::string cloudFolder = {};
};

} // namespace fernwick
