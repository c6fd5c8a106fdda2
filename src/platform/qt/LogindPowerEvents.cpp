#include "platform/qt/LogindPowerEvents.h"

#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

#include <string>

namespace fernwick::platform {

namespace {

const auto kService = QStringLiteral("org.freedesktop.login1");
const auto kPath = QStringLiteral("/org/freedesktop/login1");
const auto kInterface = QStringLiteral("org.freedesktop.login1.Manager");

// Where the system bus is (D-Bus Specification, "Well-known Message Bus Instances").
std::string systemBusAddress(const Environment& environment) {
    const auto found = environment.find("DBUS_SYSTEM_BUS_ADDRESS");
    return found != environment.end() && !found->second.empty() ? found->second
                                                                : "unix:path=/var/run/dbus/system_bus_socket";
}

} // namespace

LogindPowerEvents::LogindPowerEvents(Dispatch& dispatch, const HostEnvironment& host)
    : dispatch_(dispatch),
      address_(QString::fromStdString(systemBusAddress(host.variables()))),
      connectionName_(QStringLiteral("fernwick-power-%1").arg(reinterpret_cast<quintptr>(this))) {}

LogindPowerEvents::~LogindPowerEvents() {
    if (bus_) {
        bus_.reset();
        QDBusConnection::disconnectFromBus(connectionName_);
    }
}

void LogindPowerEvents::start() {
    dispatch_.main([weak = weak_.weak()] {
        if (auto* self = weak.get()) {
            self->connectToLogind();
        }
    });
}

void LogindPowerEvents::connectToLogind() {
    bus_ = QDBusConnection::connectToBus(address_, connectionName_);
    if (!bus_->isConnected()) {
        return;
    }
    bus_->connect(kService, kPath, kInterface, QStringLiteral("PrepareForSleep"), this,
                  SLOT(PrepareForSleep(bool)));
    logind_ = std::make_unique<QDBusServiceWatcher>(kService, *bus_, QDBusServiceWatcher::WatchForRegistration);
    connect(logind_.get(), &QDBusServiceWatcher::serviceRegistered, this, &LogindPowerEvents::takeInhibitor);
    takeInhibitor();
}

void LogindPowerEvents::PrepareForSleep(bool start) {
    ++turns_;
    if (!start) {
        didWake.emit();
        takeInhibitor();
        return;
    }
    willSleep.emit();
    // Comes behind all that the handlers queued.
    dispatch_.main([weak = weak_.weak(), turn = turns_] {
        if (auto* self = weak.get(); self != nullptr && self->turns_ == turn) {
            self->releaseInhibitor();
        }
    });
}

void LogindPowerEvents::takeInhibitor() {
    auto call = QDBusMessage::createMethodCall(kService, kPath, kInterface, QStringLiteral("Inhibit"));
    call << QStringLiteral("sleep") << QStringLiteral("Fernwick")
         << QStringLiteral("Tunnels are closed before the machine sleeps") << QStringLiteral("delay");
    call.setAutoStartService(false);
    auto* answer = new QDBusPendingCallWatcher(bus_->asyncCall(call), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer, number = ++wanted_] {
        answer->deleteLater();
        const QDBusPendingReply<QDBusUnixFileDescriptor> reply = *answer;
        // Without an inhibitor the events come all the same.
        if (reply.isValid() && number == wanted_) {
            inhibitor_ = reply.value();
        }
    });
}

void LogindPowerEvents::releaseInhibitor() {
    ++wanted_; // one that is still to come would hold back a sleep that nobody waits for any more
    inhibitor_ = QDBusUnixFileDescriptor();
}

} // namespace fernwick::platform
