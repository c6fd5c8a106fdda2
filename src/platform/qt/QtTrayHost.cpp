#include "platform/qt/QtTrayHost.h"

#include "platform/posix/SessionBusAddress.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QMetaObject>

#include <utility>

namespace fernwick::platform {

namespace {

// The names are those of the StatusNotifierItem specification (freedesktop.org), as KDE first gave them.
const auto kWatcher = QStringLiteral("org.kde.StatusNotifierWatcher");
const auto kPath = QStringLiteral("/StatusNotifierWatcher");
const auto kRegistered = QStringLiteral("StatusNotifierHostRegistered");

} // namespace

QtTrayHost::QtTrayHost(const HostEnvironment& host) : hasBus_(!sessionBusAddress(host.variables()).empty()) {}

QtTrayHost::~QtTrayHost() = default;

void QtTrayHost::start() {
    tray_.onAppeared = [this] {
        // Later, when the toolkit has read the message too.
        QMetaObject::invokeMethod(this, [this] { tellAppeared(); }, Qt::QueuedConnection);
    };
    tray_.watch();
    if (hasBus_ && QDBusConnection::sessionBus().isConnected()) {
        watchBus();
    } else {
        QMetaObject::invokeMethod(this, [this] { lookDone(false); }, Qt::QueuedConnection);
    }
}

void QtTrayHost::watchBus() {
    // The toolkit's own connection, which its icon will use as well.
    auto bus = QDBusConnection::sessionBus();
    watcher_ = std::make_unique<QDBusServiceWatcher>(kWatcher, bus, QDBusServiceWatcher::WatchForRegistration);
    connect(watcher_.get(), &QDBusServiceWatcher::serviceRegistered, this, [this] { askWatcher(); });
    bus.connect(kWatcher, kPath, kWatcher, kRegistered, this, SLOT(StatusNotifierHostRegistered()));
    askWatcher();
}

void QtTrayHost::askWatcher() {
    auto call = QDBusMessage::createMethodCall(
        kWatcher, kPath, QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
    call << kWatcher << QStringLiteral("IsStatusNotifierHostRegistered");
    call.setAutoStartService(false);
    auto* answer = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(call), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer] {
        answer->deleteLater();
        const QDBusPendingReply<QDBusVariant> reply = *answer;
        lookDone(reply.isValid() && reply.value().variant().toBool());
    });
}

void QtTrayHost::StatusNotifierHostRegistered() {
    tellAppeared();
}

void QtTrayHost::lookDone(bool found) {
    if (found || tray_.isPresent()) {
        tellAppeared();
    } else if (!std::exchange(looked_, true) && !told_) {
        absent.emit();
    }
}

void QtTrayHost::unwatch() {
    if (watcher_) {
        QDBusConnection::sessionBus().disconnect(kWatcher, kPath, kWatcher, kRegistered, this,
                                                 SLOT(StatusNotifierHostRegistered()));
        watcher_.reset();
    }
    tray_.unwatch();
}

void QtTrayHost::tellAppeared() {
    if (std::exchange(told_, true)) {
        return;
    }
    // The watches have done their work; they may be what called us, so they go later.
    QMetaObject::invokeMethod(this, [this] { unwatch(); }, Qt::QueuedConnection);
    appeared.emit();
}

} // namespace fernwick::platform
