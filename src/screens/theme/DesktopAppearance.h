// The desktop's setting for light or dark, as the desktop portal tells it (interface
// org.freedesktop.portal.Settings, namespace org.freedesktop.appearance, key color-scheme).
// Threads: main thread only. Nothing here waits: without a bus or a portal it stays silent.
#pragma once

#include "screens/theme/Palette.h"

#include <QDBusConnection>
#include <QObject>

#include <functional>
#include <optional>

class QDBusMessage;
class QVariant;

namespace fernwick {

class DesktopAppearance : public QObject {
    Q_OBJECT

public:
    using FindBus = std::function<std::optional<QDBusConnection>()>;

    // Asks once the event loop runs. Calls `report` with the desktop's wish, and again whenever it changes;
    // never when the desktop has no preference. `findBus` gives the bus to ask, or none; by default the
    // session's.
    explicit DesktopAppearance(std::function<void(Appearance)> report, FindBus findBus = sessionBus);

    // The bus of the user's session, unless there is none.
    [[nodiscard]] static std::optional<QDBusConnection> sessionBus();

private Q_SLOTS:
    void settingChanged(const QDBusMessage& message);

private:
    void ask();
    void tell(const QVariant& value) const;

    std::function<void(Appearance)> report_;
    FindBus findBus_;
};

} // namespace fernwick
