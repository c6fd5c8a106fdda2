#include "screens/theme/Icons.h"

#include <QPainter>
#include <QSvgRenderer>

#include <cmath>
#include <utility>

// The resource file is part of a static library, so the linker needs to hear that it is wanted. The macro works
// in the global namespace only.
static void registerIcons() {
    Q_INIT_RESOURCE(icons);
}

namespace fernwick {

namespace {

QString fileOf(Icon icon) {
    switch (icon) {
    case Icon::plus:
        return QStringLiteral(":/icons/plus.svg");
    case Icon::magnifier:
        return QStringLiteral(":/icons/magnifier.svg");
    case Icon::clear:
        return QStringLiteral(":/icons/clear.svg");
    case Icon::shieldNetwork:
        return QStringLiteral(":/icons/shield-network.svg");
    case Icon::network:
        return QStringLiteral(":/icons/network.svg");
    case Icon::networkOff:
        return QStringLiteral(":/icons/network-off.svg");
    case Icon::globe:
        return QStringLiteral(":/icons/globe.svg");
    case Icon::circleRight:
        return QStringLiteral(":/icons/circle-right.svg");
    case Icon::circleLeft:
        return QStringLiteral(":/icons/circle-left.svg");
    case Icon::server:
        return QStringLiteral(":/icons/server.svg");
    case Icon::playCircle:
        return QStringLiteral(":/icons/play-circle.svg");
    case Icon::stopCircle:
        return QStringLiteral(":/icons/stop-circle.svg");
    case Icon::trash:
        return QStringLiteral(":/icons/trash.svg");
    case Icon::duplicate:
        return QStringLiteral(":/icons/duplicate.svg");
    case Icon::terminal:
        return QStringLiteral(":/icons/terminal.svg");
    case Icon::infoCircle:
        return QStringLiteral(":/icons/info-circle.svg");
    case Icon::checkCircle:
        return QStringLiteral(":/icons/check-circle.svg");
    case Icon::warning:
        return QStringLiteral(":/icons/warning.svg");
    case Icon::crossCircle:
        return QStringLiteral(":/icons/cross-circle.svg");
    case Icon::sidebar:
        return QStringLiteral(":/icons/sidebar.svg");
    case Icon::check:
        return QStringLiteral(":/icons/check.svg");
    case Icon::chevronDown:
        return QStringLiteral(":/icons/chevron-down.svg");
    case Icon::application:
        break;
    }
    return QStringLiteral(":/icons/com.fernwick.Fernwick.svg");
}

quint64 keyOf(Icon icon, const QColor& color, int side) {
    return (quint64{color.rgba()} << 32U) | (quint64(std::to_underlying(icon)) << 16U) | quint64(side);
}

QPixmap render(Icon icon, const QColor& color, int side) {
    QPixmap pixmap(side, side);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    QSvgRenderer renderer(fileOf(icon));
    renderer.render(&painter, QRectF(0, 0, side, side));
    if (icon != Icon::application) {
        painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
        painter.fillRect(pixmap.rect(), color);
    }
    return pixmap;
}

} // namespace

Icons::Icons() {
    registerIcons();
}

QPixmap Icons::pixmap(Icon icon, const QColor& color, int size, qreal ratio) const {
    const int side = static_cast<int>(std::lround(size * ratio));
    const quint64 key = keyOf(icon, color, side);
    auto found = pixmaps_.find(key);
    if (found == pixmaps_.end()) {
        found = pixmaps_.insert(key, render(icon, color, side));
    }
    QPixmap pixmap = *found;
    pixmap.setDevicePixelRatio(ratio);
    return pixmap;
}

void Icons::paint(QPainter& painter, Icon icon, const QColor& color, const QRectF& area, int size) const {
    const QPointF corner(std::round(area.center().x() - size / 2.0),
                         std::round(area.center().y() - size / 2.0));
    painter.drawPixmap(corner, pixmap(icon, color, size, painter.device()->devicePixelRatioF()));
}

} // namespace fernwick
