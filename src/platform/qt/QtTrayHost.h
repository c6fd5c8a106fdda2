// Looks for the place of a tray icon where the toolkit will look for it: a StatusNotifierWatcher on the session
// bus, or the tray of the X server's first screen. The toolkit remembers the answer to its first look for ever,
// so nobody may use QSystemTrayIcon before `appeared`. Sleeps until the bus or the X server tell of a change.
// Threads: main thread only.
#pragma once

#include "platform/HostEnvironment.h"
#include "platform/TrayHost.h"
#include "platform/qt/XEmbedTray.h"

#include <QDBusServiceWatcher>
#include <QObject>

#include <memory>

namespace fernwick::platform {

class QtTrayHost final : public TrayHost {
public:
    // The session bus is used only if the environment names one: none is ever started.
    explicit QtTrayHost(const HostEnvironment& host);
    QtTrayHost(const QtTrayHost&) = delete;
    QtTrayHost& operator=(const QtTrayHost&) = delete;
    ~QtTrayHost() override;

    void start() override;

private:
    void watchBus();
    void askBus();
    void firstLookDone(bool found);
    void tellAppeared();

    bool hasBus_;
    bool told_ = false;
    std::unique_ptr<QDBusServiceWatcher> watcher_;
    XEmbedTray tray_;
    QObject context_; // what the pending answers belong to
};

} // namespace fernwick::platform
