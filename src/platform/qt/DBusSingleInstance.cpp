#include "platform/qt/DBusSingleInstance.h"

#include "platform/posix/SessionBusAddress.h"
#include "platform/qt/ApplicationAdaptor.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QString>

namespace fernwick::platform {

namespace {

const auto kService = QStringLiteral("com.fernwick.Fernwick");
const auto kPath = QStringLiteral("/com/fernwick/Fernwick");
const auto kInterface = QStringLiteral("org.freedesktop.Application");

} // namespace

DBusSingleInstance::DBusSingleInstance(const HostEnvironment& host)
    : lock_(host.supportFolder() + "/instance.lock"),
      address_(QString::fromStdString(sessionBusAddress(host.variables()))),
      connectionName_(QStringLiteral("fernwick-single-instance-%1").arg(reinterpret_cast<quintptr>(this))) {
    new ApplicationAdaptor(&exported_, reopened); // owned by its parent
}

DBusSingleInstance::~DBusSingleInstance() {
    leaveBus();
}

SingleInstance::Claim DBusSingleInstance::claim(Start start) {
    const auto onBus = claimOnBus();
    if (onBus == BusClaim::takenByOther) {
        if (start == Start::shown) {
            askOtherToShowItself();
        }
        leaveBus();
        return Claim::second;
    }
    // Another application may be without a bus, or on another one.
    if (lock_.take() == InstanceLock::Outcome::heldByOther) {
        leaveBus();
        return Claim::second;
    }
    return Claim::first;
}

DBusSingleInstance::BusClaim DBusSingleInstance::claimOnBus() {
    if (address_.isEmpty()) {
        return BusClaim::unavailable;
    }
    if (!bus_) {
        bus_ = QDBusConnection::connectToBus(address_, connectionName_);
    }
    if (!bus_->isConnected()) {
        return BusClaim::unavailable;
    }
    // The object first: with the name come the requests.
    bus_->registerObject(kPath, &exported_, QDBusConnection::ExportAdaptors);
    const auto reply = bus_->interface()->registerService(kService, QDBusConnectionInterface::DontQueueService,
                                                          QDBusConnectionInterface::DontAllowReplacement);
    if (!reply.isValid()) {
        return BusClaim::unavailable;
    }
    return reply.value() == QDBusConnectionInterface::ServiceRegistered ? BusClaim::owned
                                                                        : BusClaim::takenByOther;
}

void DBusSingleInstance::askOtherToShowItself() {
    auto call = QDBusMessage::createMethodCall(kService, kPath, kInterface, QStringLiteral("Activate"));
    call << QVariantMap();
    call.setAutoStartService(false);
    // Whether it answers or hangs, it is the application; so the reply does not matter.
    bus_->call(call, QDBus::Block, static_cast<int>(kAnswerLimit.count()));
}

void DBusSingleInstance::leaveBus() {
    if (bus_) {
        bus_->unregisterObject(kPath);
        bus_.reset();
        QDBusConnection::disconnectFromBus(connectionName_);
    }
}

} // namespace fernwick::platform
