// Sleep and wake as logind tells them (org.freedesktop.login1(5)). A delay inhibitor holds the sleep back until
// what the handlers of `willSleep` did and queued is done; logind waits for it no longer than its
// InhibitDelayMaxSec. Threads: main thread only, which waits for no answer but the bus's greeting.
#pragma once

#include "platform/Dispatch.h"
#include "platform/HostEnvironment.h"
#include "platform/PowerEvents.h"
#include "support/Weak.h"

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QDBusUnixFileDescriptor>
#include <QObject>
#include <QString>

#include <cstdint>
#include <memory>
#include <optional>

namespace fernwick::platform {

class LogindPowerEvents final : public QObject, public PowerEvents {
    Q_OBJECT

public:
    // The dispatch outlives it.
    LogindPowerEvents(Dispatch& dispatch, const HostEnvironment& host);
    LogindPowerEvents(const LogindPowerEvents&) = delete;
    LogindPowerEvents& operator=(const LogindPowerEvents&) = delete;
    ~LogindPowerEvents() override;

    // Connects to the system bus once the main queue gets to it. A logind that comes later is found; a system
    // bus has to be there.
    void start() override;

public Q_SLOTS:
    // logind's signal.
    void PrepareForSleep(bool start);

private:
    void connectToLogind();
    void takeInhibitor();
    void releaseInhibitor();

    Dispatch& dispatch_;
    QString address_; // of the system bus
    QString connectionName_;
    std::optional<QDBusConnection> bus_;
    std::unique_ptr<QDBusServiceWatcher> logind_;
    QDBusUnixFileDescriptor inhibitor_;
    std::uint64_t wanted_ = 0; // the number of the inhibitor that is asked for; an older one comes too late
    std::uint64_t turns_ = 0;  // how often logind told of a sleep or a wake
    support::WeakSource<LogindPowerEvents> weak_{*this};
};

} // namespace fernwick::platform
