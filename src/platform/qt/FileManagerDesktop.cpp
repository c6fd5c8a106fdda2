#include "platform/qt/FileManagerDesktop.h"

#include "platform/posix/AtomicFile.h"
#include "platform/posix/SessionBusAddress.h"

#include <QByteArray>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QDBusPendingCallWatcher>
#include <QDesktopServices>
#include <QFile>
#include <QStringList>
#include <QUrl>

#include <utility>

namespace fernwick::platform {

namespace {

QDBusMessage showItems(const std::string& path) {
    auto call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("/org/freedesktop/FileManager1"),
        QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("ShowItems"));
    // Encoded byte by byte, since a path need not be text.
    const auto encoded = QByteArray::fromStdString(path).toPercentEncoding("/");
    call << QStringList(QStringLiteral("file://") + QString::fromLatin1(encoded)) << QString();
    return call;
}

} // namespace

FileManagerDesktop::FileManagerDesktop(const HostEnvironment& host, Opener opener,
                                       std::chrono::milliseconds patience)
    : address_(QString::fromStdString(sessionBusAddress(host.variables()))),
      connectionName_(QStringLiteral("fernwick-desktop-%1").arg(reinterpret_cast<quintptr>(this))),
      opener_(std::move(opener)),
      patience_(patience) {}

FileManagerDesktop::~FileManagerDesktop() {
    if (bus_) {
        bus_.reset();
        QDBusConnection::disconnectFromBus(connectionName_);
    }
}

void FileManagerDesktop::reveal(const std::string& path) {
    if (!isOnBus()) {
        opener_(parentFolder(path));
        return;
    }
    const auto sent = bus_->asyncCall(showItems(path), static_cast<int>(patience_.count()));
    auto* answer = new QDBusPendingCallWatcher(sent, &answers_);
    QObject::connect(answer, &QDBusPendingCallWatcher::finished, &answers_, [this, answer, path] {
        answer->deleteLater();
        if (answer->isError()) {
            opener_(parentFolder(path));
        }
    });
}

void FileManagerDesktop::openFolder(const std::string& folder) {
    QDesktopServices::openUrl(QUrl::fromLocalFile(QFile::decodeName(folder.c_str())));
}

bool FileManagerDesktop::isOnBus() {
    if (bus_ && !bus_->isConnected()) {
        bus_.reset();
        QDBusConnection::disconnectFromBus(connectionName_); // a connection that broke never comes back
    }
    if (!bus_ && !address_.isEmpty()) {
        bus_ = QDBusConnection::connectToBus(address_, connectionName_);
    }
    return bus_ && bus_->isConnected();
}

} // namespace fernwick::platform
