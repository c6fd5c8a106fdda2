#include "platform/qt/QtTrayHost.h"

#include "platform/posix/SessionBusAddress.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QMetaObject>

#include <utility>

namespace fernwick::platform {

namespace {

const auto kWatcher = QStringLiteral("org.kde.StatusNotifierWatcher");

} // namespace

QtTrayHost::QtTrayHost(const HostEnvironment& host) : hasBus_(!sessionBusAddress(host.variables()).empty()) {}

QtTrayHost::~QtTrayHost() = default;

void QtTrayHost::start() {
    tray_.onAppeared = [this] {
        // Later, when the toolkit has read the message too.
        QMetaObject::invokeMethod(&context_, [this] { tellAppeared(); }, Qt::QueuedConnection);
    };
    tray_.watch();
    if (hasBus_) {
        watchBus();
    } else {
        QMetaObject::invokeMethod(&context_, [this] { firstLookDone(false); }, Qt::QueuedConnection);
    }
}

void QtTrayHost::watchBus() {
    // The toolkit's own connection, which its icon will use as well.
    const auto bus = QDBusConnection::sessionBus();
    watcher_ = std::make_unique<QDBusServiceWatcher>(kWatcher, bus, QDBusServiceWatcher::WatchForRegistration);
    QObject::connect(watcher_.get(), &QDBusServiceWatcher::serviceRegistered, &context_,
                     [this] { tellAppeared(); });
    askBus();
}

void QtTrayHost::askBus() {
    auto call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("NameHasOwner"));
    call << kWatcher;
    auto* answer = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(call), &context_);
    QObject::connect(answer, &QDBusPendingCallWatcher::finished, &context_, [this, answer] {
        answer->deleteLater();
        const QDBusPendingReply<bool> reply = *answer;
        firstLookDone(reply.isValid() && reply.value());
    });
}

void QtTrayHost::firstLookDone(bool found) {
    if (found || tray_.isPresent()) {
        tellAppeared();
    } else if (!told_) {
        absent.emit();
    }
}

void QtTrayHost::tellAppeared() {
    if (std::exchange(told_, true)) {
        return;
    }
    // The watches have done their work; they may be what called us, so they go later.
    QMetaObject::invokeMethod(
        &context_,
        [this] {
            watcher_.reset();
            tray_.unwatch();
        },
        Qt::QueuedConnection);
    appeared.emit();
}

} // namespace fernwick::platform
