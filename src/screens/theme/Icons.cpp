#include "screens/theme/Icons.h"

#include <QPainter>
#include <QSvgRenderer>

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

// The resource file is part of a static library, so the linker needs to hear that it is wanted. The macro works
// in the global namespace only.
static void registerIcons() {
    Q_INIT_RESOURCE(icons);
}

namespace fernwick {

namespace {

struct IconFile {
    Icon icon;
    const char* name;
};

constexpr std::array kFiles{IconFile{Icon::plus, "plus"},
                            IconFile{Icon::magnifier, "magnifier"},
                            IconFile{Icon::clear, "clear"},
                            IconFile{Icon::shieldNetwork, "shield-network"},
                            IconFile{Icon::splitRectangle, "split-rectangle"},
                            IconFile{Icon::network, "network"},
                            IconFile{Icon::networkOff, "network-off"},
                            IconFile{Icon::globe, "globe"},
                            IconFile{Icon::circleRight, "circle-right"},
                            IconFile{Icon::circleLeft, "circle-left"},
                            IconFile{Icon::server, "server"},
                            IconFile{Icon::playCircle, "play-circle"},
                            IconFile{Icon::stopCircle, "stop-circle"},
                            IconFile{Icon::trash, "trash"},
                            IconFile{Icon::duplicate, "duplicate"},
                            IconFile{Icon::terminal, "terminal"},
                            IconFile{Icon::infoCircle, "info-circle"},
                            IconFile{Icon::checkCircle, "check-circle"},
                            IconFile{Icon::warning, "warning"},
                            IconFile{Icon::crossCircle, "cross-circle"},
                            IconFile{Icon::sidebar, "sidebar"},
                            IconFile{Icon::check, "check"},
                            IconFile{Icon::chevronDown, "chevron-down"},
                            IconFile{Icon::arrowRight, "arrow-right"},
                            IconFile{Icon::arrowsSwap, "arrows-swap"},
                            IconFile{Icon::document, "document"},
                            IconFile{Icon::gear, "gear"},
                            IconFile{Icon::key, "key"},
                            IconFile{Icon::laptop, "laptop"},
                            IconFile{Icon::lock, "lock"},
                            IconFile{Icon::note, "note"},
                            IconFile{Icon::personKey, "person-key"},
                            IconFile{Icon::sliders, "sliders"},
                            IconFile{Icon::appBadge, "app-badge"},
                            IconFile{Icon::branch, "branch"},
                            IconFile{Icon::list, "list"},
                            IconFile{Icon::minus, "minus"},
                            IconFile{Icon::play, "play"},
                            IconFile{Icon::stop, "stop"},
                            IconFile{Icon::power, "power"},
                            IconFile{Icon::window, "window"},
                            IconFile{Icon::arrowClockwise, "arrow-clockwise"},
                            IconFile{Icon::switchControl, "switch"},
                            IconFile{Icon::listRectangle, "list-rectangle"},
                            IconFile{Icon::tag, "tag"},
                            IconFile{Icon::arrowsCircle, "arrows-circle"},
                            IconFile{Icon::pencil, "pencil"},
                            IconFile{Icon::eye, "eye"},
                            IconFile{Icon::eyeOff, "eye-off"},
                            IconFile{Icon::shieldLock, "shield-lock"},
                            IconFile{Icon::keyOff, "key-off"},
                            IconFile{Icon::lockOpen, "lock-open"},
                            IconFile{Icon::exclamationCircle, "exclamation-circle"},
                            IconFile{Icon::cloud, "cloud"},
                            IconFile{Icon::cloudOff, "cloud-off"},
                            IconFile{Icon::clockBack, "clock-back"},
                            IconFile{Icon::archive, "archive"},
                            IconFile{Icon::transfer, "transfer"},
                            IconFile{Icon::folder, "folder"},
                            IconFile{Icon::ellipsisCircle, "ellipsis-circle"},
                            IconFile{Icon::refresh, "refresh"},
                            IconFile{Icon::application, "com.fernwick.Fernwick"}};

QString fileOf(Icon icon) {
    const auto* const found = std::ranges::find(kFiles, icon, &IconFile::icon);
    return QStringLiteral(":/icons/%1.svg").arg(QLatin1String(found->name));
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
