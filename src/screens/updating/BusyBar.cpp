#include "screens/updating/BusyBar.h"

#include "screens/theme/StylePaint.h"

#include <QPainter>
#include <QTimerEvent>

#include <cmath>
#include <numbers>

namespace fernwick {

namespace {

constexpr int kFrame = 33;             // milliseconds
constexpr double kThereAndBack = 2400; // milliseconds
constexpr double kThickness = 6.0;
constexpr double kPiece = 0.3; // of the bar's length
constexpr double kStart = 0.2; // of the way there, so that the first picture has a piece in it

} // namespace

BusyBar::BusyBar(const Theme& theme, QWidget* parent) : QProgressBar(parent), theme_(theme) {
    setRange(0, 0);
    setTextVisible(false);
}

void BusyBar::showEvent(QShowEvent* event) {
    shown_.start();
    frames_.start(kFrame, this);
    QProgressBar::showEvent(event);
}

void BusyBar::hideEvent(QHideEvent* event) {
    frames_.stop();
    QProgressBar::hideEvent(event);
}

void BusyBar::timerEvent(QTimerEvent* event) {
    if (event->timerId() == frames_.timerId()) {
        update();
    }
}

void BusyBar::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    const auto& colors = theme_.colors();
    const double radius = kThickness / 2.0;
    const QRectF groove(0.0, (height() - kThickness) / 2.0, width(), kThickness);
    stylepaint::roundedBox(painter, groove, colors.control, colors.border, radius);
    const double elapsed = shown_.isValid() ? static_cast<double>(shown_.elapsed()) : 0.0;
    const double turn = 2.0 * std::numbers::pi * (elapsed / kThereAndBack + kStart / 2.0);
    const double way = (1.0 - std::cos(turn)) / 2.0; // slow at both ends
    QRectF piece = groove;
    piece.setWidth(groove.width() * kPiece);
    piece.moveLeft(way * (groove.width() - piece.width()));
    stylepaint::roundedBox(painter, piece, colors.accent, colors.accent, radius);
}

} // namespace fernwick
