// The desktop's setting for light or dark, as the desktop portal tells it (interface
// org.freedesktop.portal.Settings, namespace org.freedesktop.appearance, key color-scheme).
// Threads: main thread only. Nothing here waits: without a bus or a portal it stays silent.
#pragma once

#include "screens/theme/Palette.h"

#include <QObject>

#include <functional>

class QDBusVariant;
class QVariant;

namespace fernwick {

class DesktopAppearance : public QObject {
    Q_OBJECT

public:
    // Asks once the event loop runs. Calls `report` with the desktop's wish, and again whenever it changes; never
    // when the desktop has no preference.
    explicit DesktopAppearance(std::function<void(Appearance)> report);

private Q_SLOTS:
    void settingChanged(const QString& space, const QString& key, const QDBusVariant& value);

private:
    void ask();
    void tell(const QVariant& value) const;

    std::function<void(Appearance)> report_;
};

} // namespace fernwick
