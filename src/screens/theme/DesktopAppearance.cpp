#include "screens/theme/DesktopAppearance.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QFileInfo>
#include <QTimer>

namespace fernwick {

namespace {

// Values of color-scheme by the portal's documentation; 0 is "no preference".
constexpr uint kPreferDark = 1;
constexpr uint kPreferLight = 2;

QString portalService() {
    return QStringLiteral("org.freedesktop.portal.Desktop");
}

QString portalPath() {
    return QStringLiteral("/org/freedesktop/portal/desktop");
}

QString settingsInterface() {
    return QStringLiteral("org.freedesktop.portal.Settings");
}

QString appearanceNamespace() {
    return QStringLiteral("org.freedesktop.appearance");
}

QString colorSchemeKey() {
    return QStringLiteral("color-scheme");
}

// The portal wraps the value in one variant more than it says.
QVariant unwrapped(QVariant value) {
    while (value.canConvert<QDBusVariant>()) {
        value = value.value<QDBusVariant>().variant();
    }
    return value;
}

} // namespace

DesktopAppearance::DesktopAppearance(std::function<void(Appearance)> report, FindBus findBus)
    : report_(std::move(report)), findBus_(std::move(findBus)) {
    QTimer::singleShot(0, this, [this] { ask(); });
}

std::optional<QDBusConnection> DesktopAppearance::sessionBus() {
    // Without an address and a socket in the usual place the library would start a bus of its own.
    if (qEnvironmentVariableIsEmpty("DBUS_SESSION_BUS_ADDRESS") &&
        !QFileInfo::exists(qEnvironmentVariable("XDG_RUNTIME_DIR") + QStringLiteral("/bus"))) {
        return std::nullopt;
    }
    return QDBusConnection::sessionBus();
}

void DesktopAppearance::ask() {
    auto found = findBus_();
    if (!found || !found->isConnected()) {
        return;
    }
    QDBusConnection& bus = *found;
    // A slot that takes the whole message: at this moment the library may not know the types of the arguments
    // yet, and then it would refuse a slot that names them.
    bus.connect(portalService(), portalPath(), settingsInterface(), QStringLiteral("SettingChanged"), this,
                SLOT(settingChanged(QDBusMessage)));
    auto call = QDBusMessage::createMethodCall(portalService(), portalPath(), settingsInterface(),
                                               QStringLiteral("Read"));
    call << appearanceNamespace() << colorSchemeKey();
    auto* watcher = new QDBusPendingCallWatcher(bus.asyncCall(call), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this](QDBusPendingCallWatcher* done) {
        const QDBusPendingReply<QDBusVariant> reply = *done;
        if (reply.isValid()) {
            tell(QVariant::fromValue(reply.value()));
        }
        done->deleteLater();
    });
}

void DesktopAppearance::settingChanged(const QDBusMessage& message) {
    const QVariantList arguments = message.arguments();
    if (arguments.size() == 3 && arguments[0] == appearanceNamespace() && arguments[1] == colorSchemeKey()) {
        tell(arguments[2]);
    }
}

void DesktopAppearance::tell(const QVariant& value) const {
    const uint scheme = unwrapped(value).toUInt();
    if (scheme == kPreferDark) {
        report_(Appearance::dark);
    } else if (scheme == kPreferLight) {
        report_(Appearance::light);
    }
}

} // namespace fernwick
