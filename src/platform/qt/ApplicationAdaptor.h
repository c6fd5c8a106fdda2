// What others on the session bus may ask of the application: the interface org.freedesktop.Application.
// Threads: main thread only.
#pragma once

#include "support/Signal.h"

#include <QDBusAbstractAdaptor>
#include <QStringList>
#include <QVariantMap>

namespace fernwick::platform {

class ApplicationAdaptor final : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

public:
    // Stands on the bus wherever `parent` does. Emits `reopened`, which outlives it, for each request.
    ApplicationAdaptor(QObject* parent, const support::Signal<>& reopened)
        : QDBusAbstractAdaptor(parent), reopened_(reopened) {}

public Q_SLOTS:
    // Names and parameters are the interface's own.
    void Activate(const QVariantMap& platformData);
    void Open(const QStringList& uris, const QVariantMap& platformData);
    void ActivateAction(const QString& name, const QVariantList& parameters, const QVariantMap& platformData);

private:
    const support::Signal<>& reopened_;
};

} // namespace fernwick::platform
