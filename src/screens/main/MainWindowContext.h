// What the main window needs of the rest of the application; all of it outlives the window.
#pragma once

#include "catalogue/KeyManager.h"
#include "catalogue/KeychainStore.h"
#include "catalogue/TagManager.h"
#include "catalogue/TunnelStore.h"
#include "platform/Clock.h"
#include "platform/Dialogs.h"
#include "platform/Dispatch.h"
#include "platform/HostEnvironment.h"
#include "platform/Pasteboard.h"
#include "screens/theme/Theme.h"
#include "support/NotificationCenter.h"
#include "tunnel/TunnelManager.h"

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace fernwick {

struct MainWindowContext {
    const Theme& theme;
    TunnelStore& store;
    TunnelManager& tunnels;
    KeyManager& keys;
    TagManager& tags;
    support::NotificationCenter& notifications;
    platform::Dispatch& dispatch;
    const platform::Clock& clock;
    const platform::HostEnvironment& host;
    KeychainStore& keychain;
    platform::Dialogs& dialogs;
    platform::Pasteboard& pasteboard;

    // Shows the window of proxies and rules, given the id and name of every tunnel. Without it, its button does
    // nothing.
    std::function<void(std::vector<std::pair<support::Uuid, std::string>>)> showProxyRules = nullptr;

    // Shows the settings. Without it, no menu entry offers them.
    std::function<void()> openSettings = nullptr;
};

} // namespace fernwick
