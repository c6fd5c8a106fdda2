// The application's own line icons, drawn on a grid of 24 and tinted when they are loaded.
// Threads: main thread only.
#pragma once

#include <QColor>
#include <QHash>
#include <QPixmap>
#include <QString>

class QPainter;
class QRectF;

namespace fernwick {

enum class Icon {
    plus,
    magnifier,
    clear,
    shieldNetwork,
    splitRectangle,
    network,
    networkOff,
    globe,
    circleRight,
    circleLeft,
    server,
    playCircle,
    stopCircle,
    trash,
    duplicate,
    terminal,
    infoCircle,
    checkCircle,
    warning,
    crossCircle,
    sidebar,
    check,
    chevronDown,
    arrowRight,
    arrowsSwap,
    document,
    gear,
    key,
    laptop,
    lock,
    note,
    personKey,
    sliders,
    appBadge,
    branch,
    list,
    minus,
    play,
    stop,
    power,
    window,
    arrowClockwise,
    switchControl,
    listRectangle,
    tag,
    arrowsCircle,
    pencil,
    eye,
    eyeOff,
    shieldLock,
    keyOff,
    lockOpen,
    exclamationCircle,
    cloud,
    cloudOff,
    clockBack,
    archive,
    transfer,
    folder,
    ellipsisCircle,
    refresh,
    application // the application's own mark, which keeps its colours
};

class Icons {
public:
    Icons();
    Icons(const Icons&) = delete;
    Icons& operator=(const Icons&) = delete;

    // The icon in a colour, `size` logical pixels wide and high, sharp on a screen of that ratio. Kept for the
    // next call with the same arguments.
    [[nodiscard]] QPixmap pixmap(Icon icon, const QColor& color, int size, qreal ratio) const;

    // Draws the icon, `size` wide and high, in the middle of the area.
    void paint(QPainter& painter, Icon icon, const QColor& color, const QRectF& area, int size) const;

private:
    mutable QHash<quint64, QPixmap> pixmaps_;
};

} // namespace fernwick
