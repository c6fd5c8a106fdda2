// What the settings window needs of the rest of the application.
#pragma once

#include "catalogue/KeyManager.h"
#include "catalogue/KeychainStore.h"
#include "catalogue/TagManager.h"
#include "platform/Clock.h"
#include "platform/Desktop.h"
#include "platform/Dialogs.h"
#include "platform/Dispatch.h"
#include "platform/FileSystem.h"
#include "platform/HostEnvironment.h"
#include "platform/LoginItem.h"
#include "platform/UserDefaults.h"
#include "screens/theme/Theme.h"

#include <functional>
#include <optional>
#include <string>

class QWidget;

namespace fernwick {

// All that is referred to outlives the window.
struct SettingsContext {
    const Theme& theme;
    KeyManager& keys;
    TagManager& tags;
    KeychainStore& keychain;
    platform::UserDefaults& defaults;
    platform::LoginItem& loginItem;
    platform::Desktop& desktop;
    platform::Dialogs& dialogs;
    platform::FileSystem& files;
    platform::Dispatch& dispatch;
    const platform::Clock& clock;
    const platform::HostEnvironment& host;

    // Asks whether there is a newer version; the answer comes by SettingsWindowController::showUpdateOutcome.
    // Without it the button for that does nothing.
    std::function<void()> checkForUpdates = nullptr;

    // Makes the page of the tab "Sync", a child of `parent`. Called when a window shows that tab for the first
    // time and not before. Without it the page is empty.
    std::function<QWidget*(QWidget* parent)> makeSyncPage = nullptr;

    // The version in the application's bundle, e.g. "3.1.0"; nothing where there is none.
    std::function<std::optional<std::string>()> bundleVersion = nullptr;
};

} // namespace fernwick
