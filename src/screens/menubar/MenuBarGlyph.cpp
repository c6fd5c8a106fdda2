#include "screens/menubar/MenuBarGlyph.h"

#include <QPainter>
#include <QPixmap>
#include <QSvgRenderer>

#include <algorithm>
#include <array>

namespace fernwick {

namespace {

constexpr std::array kSizes{16, 22, 24, 32, 44, 48, 64};
constexpr int kSmallGrid = 16;
constexpr int kLargeGrid = 22;
constexpr double kEdgeOpacity = 0.6;

QString nameOf(MenuBarSymbol symbol) {
    switch (symbol) {
    case MenuBarSymbol::network:
        return QStringLiteral("network");
    case MenuBarSymbol::networkShield:
        return QStringLiteral("network-shield");
    case MenuBarSymbol::networkSlash:
        break;
    }
    return QStringLiteral("network-slash");
}

// The grid that has the fewest pixels left over at that side.
int gridFor(int side) {
    if (side < kLargeGrid) {
        return kSmallGrid;
    }
    return side % kSmallGrid <= side % kLargeGrid ? kSmallGrid : kLargeGrid;
}

// The file is drawn with black for ink and white for what is cut out again. Both become one shape: what is
// opaque and not white.
QImage shapeOf(MenuBarSymbol symbol, int side) {
    const int grid = gridFor(side);
    const int drawn = std::max(side / grid, 1) * grid;
    QSvgRenderer renderer(QStringLiteral(":/icons/menubar/%1-%2.svg").arg(nameOf(symbol)).arg(grid));
    QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    // A side below the smallest grid is the one case that is scaled.
    const int extent = std::min(drawn, side);
    const int margin = (side - extent) / 2;
    renderer.render(&painter, QRectF(margin, margin, extent, extent));
    painter.end();
    for (int y = 0; y < side; ++y) {
        auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
        std::transform(line, line + side, line,
                       [](QRgb pixel) { return qRgba(0, 0, 0, qAlpha(pixel) - qRed(pixel)); });
    }
    return image;
}

QImage tinted(QImage shape, const QColor& color) {
    QPainter painter(&shape);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(shape.rect(), color);
    return shape;
}

} // namespace

QImage menuBarGlyph(MenuBarSymbol symbol, Appearance appearance, int side) {
    const QImage shape = shapeOf(symbol, side);
    const Palette ink = paletteFor(appearance);
    const QColor edge = appearance == Appearance::dark ? QColor(Qt::black) : QColor(Qt::white);
    QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    const QImage shade = tinted(shape, edge);
    const int width = std::max(side / kSmallGrid, 1);
    for (int x = -width; x <= width; ++x) {
        for (int y = -width; y <= width; ++y) {
            painter.drawImage(x, y, shade);
        }
    }
    // All of the edge at once, since what lies over itself would grow darker.
    painter.setCompositionMode(QPainter::CompositionMode_DestinationIn);
    painter.fillRect(image.rect(), withOpacity(Qt::black, kEdgeOpacity));
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    painter.drawImage(0, 0, tinted(shape, ink.text));
    return image;
}

QIcon menuBarIcon(MenuBarSymbol symbol, Appearance appearance) {
    QIcon icon;
    for (const int side : kSizes) {
        icon.addPixmap(QPixmap::fromImage(menuBarGlyph(symbol, appearance, side)));
    }
    return icon;
}

} // namespace fernwick
