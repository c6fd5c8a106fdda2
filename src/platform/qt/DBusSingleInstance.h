// The single instance on the session bus, by the name that the desktop uses to start and raise applications
// (the D-Bus section of the Desktop Entry Specification), with a lock file behind it for starts that the bus
// cannot tell of. Threads: main thread only.
#pragma once

#include "platform/HostEnvironment.h"
#include "platform/SingleInstance.h"
#include "platform/posix/InstanceLock.h"

#include <QDBusConnection>
#include <QObject>

#include <chrono>
#include <memory>
#include <optional>

namespace fernwick::platform {

class DBusSingleInstance final : public SingleInstance {
public:
    // How long a second start waits for the first to answer.
    static constexpr std::chrono::milliseconds kAnswerLimit{2000};

    // The lock file lies in the host's support folder. The bus is used only if one is there already: none is
    // ever started.
    explicit DBusSingleInstance(const HostEnvironment& host);
    DBusSingleInstance(const DBusSingleInstance&) = delete;
    DBusSingleInstance& operator=(const DBusSingleInstance&) = delete;
    ~DBusSingleInstance() override;

    [[nodiscard]] Claim claim(Start start) override;

private:
    enum class BusClaim { unavailable, owned, takenByOther };

    [[nodiscard]] BusClaim claimOnBus();
    void askOtherToShowItself();
    void leaveBus();

    InstanceLock lock_;
    QString address_; // of the session bus; empty when there is none
    QString connectionName_;
    std::optional<QDBusConnection> bus_;
    QObject exported_; // what stands on the bus at our path
};

} // namespace fernwick::platform
