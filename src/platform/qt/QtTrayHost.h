// Looks for the place of a tray icon where the toolkit will look for it: a StatusNotifierWatcher on the session
// bus that knows a host, or the tray of the X server's first screen. The toolkit remembers the answer to its
// first look for ever, so nobody may use QSystemTrayIcon before `appeared`. Sleeps until the bus or the X
// server tell of a change. Threads: main thread only.
#pragma once

#include "platform/HostEnvironment.h"
#include "platform/TrayHost.h"
#include "platform/qt/XEmbedTray.h"

#include <QDBusServiceWatcher>
#include <QObject>

#include <memory>

namespace fernwick::platform {

class QtTrayHost final : public QObject, public TrayHost {
    Q_OBJECT

public:
    // The session bus is used only if the environment names one: none is ever started.
    explicit QtTrayHost(const HostEnvironment& host);
    QtTrayHost(const QtTrayHost&) = delete;
    QtTrayHost& operator=(const QtTrayHost&) = delete;
    ~QtTrayHost() override;

    void start() override;

public Q_SLOTS:
    // The watcher's signal.
    void StatusNotifierHostRegistered();

private:
    void watchBus();
    void askWatcher();
    void lookDone(bool found);
    void unwatch();
    void tellAppeared();

    bool hasBus_;
    bool looked_ = false; // the first look is over
    bool told_ = false;   // that there is a place
    std::unique_ptr<QDBusServiceWatcher> watcher_;
    XEmbedTray tray_;
};

} // namespace fernwick::platform
